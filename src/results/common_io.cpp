#include "common_io.h"

#include "controller/comms.h"
#include "foundation/vb_error.h"
#include "foundation/clock.h"
#include "foundation/dialogs.h"
#include "foundation/error_report.h"
#include "foundation/host.h"
#include "foundation/logs.h"
#include "foundation/numbers.h"
#include "vote/run_context.h"

#include <optional>

#include <QFile>
#include <QJsonObject>

namespace tallix {

namespace {

const char* const kModule = "Common_IO";

host::Tags* presentationTags(RunContext& ctx)
{
    if (!ctx.oPres)
        Raise(ErrNo::ObjectVariableNotSet, "Object variable or With block variable not set");
    return ctx.oPres->GetTags();
}


} // namespace

QString ActiveKeypadsTag(RunContext& ctx)
{
    QString value;
    IgnoringErrors([&] { value = presentationTags(ctx)->Item("ActiveKeypads"); });
    return value;
}

void ReadActiveKeypads(RunContext& ctx)
{
    const qint64 t0 = ctx.clock->perfCounter();
    QString text = ActiveKeypadsTag(ctx);
    ctx.activeKeypads = QStringList{QString()};
    if (QString(text).remove(',').trimmed().isEmpty())
        return;
    if (text.startsWith(','))
        text.remove(0, 1);
    if (text.endsWith(','))
        text.chop(1);
    QStringList list;
    for (const QString& item : text.split(','))
        if (!item.contains(' '))
            list << item;
    ctx.activeKeypads = list.isEmpty() ? QStringList{QString()} : list;
    WriteDebugLog(ctx, float(CounterSeconds(ctx, t0, ctx.clock->perfCounter())), "", kModule, "ReadActiveKeypads");
}

std::vector<bool> ActiveKeypadFlags(const QStringList& activeKeypads, qint32 highest)
{
    std::vector<bool> flags;
    for (const QString& entry : activeKeypads)
        if (const std::optional<qint32> n = PlainNumber(entry); n && *n <= highest) {
            if (size_t(*n) >= flags.size())
                flags.resize(size_t(*n) + 1);
            flags[size_t(*n)] = true;
        }
    return flags;
}

void WriteActiveKeypads(RunContext& ctx, short& allKeypads)
{
    Guarded(ctx, kModule, "WriteActiveKeypads", ctx.ShowErrors, [&] {
        if (ctx.respondedKeypads.isEmpty() && !allKeypads)
            return;
        QString text;
        if (!allKeypads) {
            text = ctx.respondedKeypads.join(',');
            ctx.activeKeypads = ctx.respondedKeypads;
        } else {
            text = ctx.allKeypadsText;
        }
        if (text.startsWith(','))
            text.remove(0, 1);
        if (text.endsWith(','))
            text.chop(1);
        host::Tags* tags = presentationTags(ctx);
        tags->Delete("ActiveKeypads");
        tags->Add("ActiveKeypads", text);
        if (ctx.comms)
            // The controller reads the list from the command: the deck on disk may not
            // hold the tag until the next commit.
            ctx.comms->SendCommandToController("ReadActiveKeypads", QJsonObject{{"activeKeypads", text}});
        if (allKeypads) {
            ReadActiveKeypads(ctx);
            if (ctx.comms)
                ctx.comms->ReadPortInfo();
        }
    });
}

short readCurrentSlide(RunContext& ctx)
{
    return Guarded(ctx, "IO_Columns", "readCurrentSlide", ctx.ShowErrors, short(0), [&]() -> short {
        if (ctx.makeMode) {
            ctx.currentSlide = short(tlxVal(ctx.arg2));
            return ctx.currentSlide;
        }
        host::Tags* tags = presentationTags(ctx);
        double slide = tlxVal(tags->Item("tlxCurrentSlide"));
        tags->Delete("tlxCurrentSlide");
        if (slide == 0 && ctx.currentSlide >= 1)
            slide = ctx.currentSlide;
        const bool show = ctx.oPPT->SlideShowWindowsCount() > 0;
        if (slide < 1) {
            if (!show)
                slide = ctx.oPPT->ActiveWindow()->GetView()->GetSlide()->SlideIndex();
            else
                slide = ctx.oPPT->SlideShowWindows(1)->GetView()->GetSlide()->SlideIndex();
        }
        ctx.currentSlide = short(slide);
        IgnoringErrors([&] {
            host::View* view = show ? ctx.oPPT->SlideShowWindows(1)->GetView() : ctx.oPPT->ActiveWindow()->GetView();
            if (view->GetSlide()->SlideIndex() != ctx.currentSlide)
                view->GotoSlide(ctx.currentSlide);
        });
        return ctx.currentSlide;
    });
}

void ClearActivity(RunContext& ctx)
{
    IgnoringErrors([&] { presentationTags(ctx)->Delete("tlxActivity"); });
}

void RecordVoteEnd(RunContext& ctx, const QString& reason)
{
    if (ctx.voteEndRecorded)
        return;
    ctx.voteEndRecorded = true;
    IgnoringErrors([&] {
        host::Tags* tags = presentationTags(ctx);
        tags->Delete("tlxVoteTerminated");
        // The reason comes first: ReadVoteEnd returns the first line.
        tags->Add("tlxVoteTerminated", reason + "\r\n" + QString::number(ctx.app.processId));
    });
    ClearActivity(ctx);
}

QString ReadVoteEnd(RunContext& ctx)
{
    QString value;
    IgnoringErrors([&] { value = presentationTags(ctx)->Item("tlxVoteTerminated"); });
    if (value.isEmpty())
        return {};
    return value.split("\r\n").first();
}

QString FileTitle(const QString& path)
{
    const qsizetype cut = std::max(path.lastIndexOf('\\'), path.lastIndexOf('/'));
    return cut < 0 ? path : path.mid(cut + 1);
}

QString ReadWholeFile(RunContext& ctx, const QString& path)
{
    QFile f(path);
    if (!f.open(QIODevice::ReadOnly)) {
        ReportFailure(ctx, std::make_exception_ptr(VbError(ErrNo::FileNotFound, "File not found: " + path)), kModule,
                      "ReadWholeFile", ctx.ShowErrors);
        return {};
    }
    return QString::fromUtf8(f.readAll());
}

} // namespace tallix
