#include "rank_markers.h"

#include "foundation/error_report.h"
#include "foundation/vb_error.h"
#include "foundation/host.h"
#include "question/slide_objects.h"
#include "vote/run_context.h"

namespace tallix {

namespace {

const char* kModule = "Common_ChartDisplay";

host::Shape* marker(RunContext& ctx, short item)
{
    host::Slide* slide = SlideAt(ctx, ctx.currentSlide);
    return ShapeNamed(slide, QStringLiteral("tallix rank marker %1").arg(item + 1, 2, 10, QLatin1Char('0')));
}

} // namespace

QString MarkerGlyph(int code)
{
    // Codes 128 to 159 are where Windows-1252 and Latin-1 part ways.
    static const char16_t high[32] = {0x20AC, 0x81,   0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021,
                                      0x02C6, 0x2030, 0x0160, 0x2039, 0x0152, 0x8D,   0x017D, 0x8F,
                                      0x90,   0x2018, 0x2019, 0x201C, 0x201D, 0x2022, 0x2013, 0x2014,
                                      0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x9D,   0x017E, 0x0178};
    if (code < 1 || code > 255)
        return {};
    return QString(QChar(code >= 128 && code < 160 ? high[code - 128] : char16_t(code)));
}

void positionCurrentRankIndicator(RunContext& ctx, short item)
{
    Guarded(ctx, kModule, "positionCurrentRankIndicator", false, [&] {
        host::Shape* s = marker(ctx, item);
        if (!s || !s->HasTextFrame())
            return;
        host::TextFrame* text = s->GetTextFrame();
        text->SetText(MarkerGlyph(ctx.MarkerCharacter));
        text->SetFont(QStringLiteral("Wingdings"), 26, ctx.MarkerColour);
        s->SetVisible(true);
    });
}

void hideCurrentRankIndicator(RunContext& ctx, short item)
{
    IgnoringErrors([&] {
        if (host::Shape* s = marker(ctx, item))
            s->SetVisible(false);
    });
}

} // namespace tallix
