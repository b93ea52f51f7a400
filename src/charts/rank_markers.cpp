#include "rank_markers.h"

#include "foundation/error_report.h"
#include "foundation/vb_error.h"
#include "foundation/host.h"
#include "foundation/text_files.h"
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
    if (code < 1 || code > 255)
        return {};
    return QString(Windows1252Char(static_cast<unsigned char>(code)));
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
