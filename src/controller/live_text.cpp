#include "live_text.h"

#include "foundation/dialogs.h"
#include "foundation/event_pump.h"
#include "foundation/host.h"
#include "foundation/error_report.h"
#include "foundation/vb_error.h"
#include "question/slide_objects.h"
#include "vote/forms.h"
#include "vote/run_context.h"
#include "vote/vote_close.h"

namespace tallix {

namespace {

const QString kAnswers = QStringLiteral("tlx_answers");
const QString kBackup = QStringLiteral("tlx_answers-BAK");

QString titleCase(const QString& text)
{
    QString out = text.toLower();
    bool start = true;
    for (QChar& c : out) {
        if (start && c.isLetter())
            c = c.toUpper();
        start = c.isSpace();
    }
    return out;
}

// The text before its last line. The shape reads its paragraphs back joined by CR while a
// new line goes in with CR LF, so the last break of either kind counts.
QString withoutLastLine(const QString& text)
{
    const qsizetype at = std::max(text.lastIndexOf(u'\r'), text.lastIndexOf(u'\n'));
    if (at < 0)
        return text;
    return text.left(at > 0 && text[at] == u'\n' && text[at - 1] == u'\r' ? at - 1 : at);
}

void fail(RunContext& ctx, const QString& message)
{
    ctx.dialogs->MsgBox(message, MsgBoxStyle::Critical, "tallix");
    FullShutDown(ctx);
}

} // namespace

QString ParticipantName(const RunContext& ctx, qint32 keypad)
{
    if (keypad >= 0 && keypad <= ctx.participants.ubound() && !ctx.participants(keypad).name.isEmpty())
        return ctx.participants(keypad).name;
    return QString::number(keypad);
}

host::Shape* LiveAnswersShape(RunContext& ctx)
{
    host::Slide* slide = SlideAt(ctx, ctx.currentSlide);
    if (host::Shape* answers = ShapeNamed(slide, kAnswers))
        return answers;
    host::Shape* backup = ShapeNamed(slide, kBackup);
    if (!backup)
        return nullptr;
    backup->Copy();
    host::Shapes* shapes = slide->GetShapes();
    shapes->Paste();
    host::Shape* copy = shapes->Item(shapes->Count());
    copy->SetName(kAnswers);
    copy->SetTop(backup->Top());
    copy->SetLeft(backup->Left());
    return copy;
}

bool LiveTextDisplay(RunContext& ctx, qint32 keypad, const QString& value)
{
    host::Shape* shape = LiveAnswersShape(ctx);
    if (!shape) {
        fail(ctx, QStringLiteral("Unable to locate the tallix answers place holder, please re-run slide editor"));
        return false;
    }
    QString old;
    try {
        old = shape->GetTextFrame()->Text();
    } catch (const ProcessExit&) {
        throw;
    } catch (...) {
        const VbError e = AsVbError(std::current_exception());
        fail(ctx, e.description() + ": " + QString::number(e.number()) +
                      "\r\n\r\nThe tallix answers place holder has been corrupted, please re-run slide editor");
        return false;
    }
    QString t = value.trimmed();
    if (t.isEmpty())
        return false;
    // The list's first element waits empty for the first answer.
    if (ctx.responseList.isEmpty() || !ctx.responseList.first().isEmpty())
        ctx.responseList.append(QString());
    if (ctx.WLSUseResponsesAsNames)
        t = titleCase(t);
    const QString element = ctx.FreeNumDisplay_ShowKP ? ParticipantName(ctx, keypad) + ": " + t : t;
    ctx.responseList.last() = element;

    host::TextFrame* text = shape->GetTextFrame();
    const QString mark = u'[' + QString::number(keypad) + u']';
    const QString line = ctx.WLSUseResponsesAsNames ? mark + u' ' + element : element;
    bool pause = false;
    if (ctx.responseList.size() == 1) {
        text->SetText(line);
        ++ctx.liveLineCount;
    } else if (ctx.WLSUseResponsesAsNames && old.contains(mark)) {
        // The keypad's line is replaced, its break with it.
        const qsizetype from = old.indexOf(mark);
        qsizetype end = -1;
        for (const QString& brk : {QStringLiteral("\r\n"), QStringLiteral("\r"), QStringLiteral("\n")}) {
            end = old.indexOf(brk, from);
            if (end >= 0)
                break;
        }
        if (end < 0)
            end = old.size();
        text->ReplaceText(int(from) + 1, int(end - from) + 1, mark + u' ' + t);
    } else if (text->ParagraphCount() < ctx.WLSDisplay) {
        text->SetText(line + "\r\n" + old);
        ++ctx.liveLineCount;
    } else if (ctx.WLSListManagementMode == 2) {
        if (ctx.vCast && !ctx.vCast->TextScrollRunning() && shape->Visible())
            ctx.vCast->StartTextScroll();
    } else if (ctx.WLSListManagementMode == 1 && ctx.liveLineCount >= ctx.WLSDisplay) {
        pause = true;   // a screen is full: the room waits until the presenter goes on
    } else {
        text->SetText(withoutLastLine(line + "\r\n" + old));
        ++ctx.liveLineCount;
    }
    if (!pause && ctx.WLSShow && !shape->Visible()) {
        shape->SetVisible(true);
        ctx.pump->DoEvents();
    }
    IgnoringErrors([&] {
        SlideAt(ctx, ctx.currentSlide)
            ->GetTags()
            ->Add(QStringLiteral("TLXLIVEDATAISVISIBLE"), QStringLiteral("This slide has live data visible"));
    });
    return pause;
}

void JolttextScrollTick(RunContext& ctx)
{
    IgnoringErrors([&] {
        host::Shape* shape = LiveAnswersShape(ctx);
        if (!shape || ctx.responseList.isEmpty())
            return;
        const int count = int(ctx.responseList.size());
        if (ctx.scrollPos >= count || ctx.scrollPos < 0)
            ctx.scrollPos = 0;
        // The window goes on from the first answer when the list ends, never repeating one.
        QStringList window;
        for (int i = 0; i < ctx.WLSDisplay && i < count; ++i)
            window << ctx.responseList[(ctx.scrollPos + i) % count];
        shape->GetTextFrame()->SetText(window.join(QStringLiteral("\r\n")));
        // The show redraws only a shape that is new.
        host::Shapes* shapes = SlideAt(ctx, ctx.currentSlide)->GetShapes();
        shape->Cut();
        shapes->Paste()->SetName(kAnswers);
        ctx.scrollPos = ctx.scrollPos + 1 >= count ? 0 : ctx.scrollPos + 1;
    });
}

} // namespace tallix
