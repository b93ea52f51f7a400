#include "votes_cast_boxes.h"

#include "charts/chart_procedures.h"
#include "foundation/clock.h"
#include "foundation/environment.h"
#include "foundation/error_report.h"
#include "foundation/logs.h"
#include "foundation/numbers.h"
#include "vote/forms.h"
#include "controller/scalepad_votes.h"
#include "vote/run_context.h"

namespace tallix {

namespace {

const char* kModule = "Vote";

QString countUpCaption(const RunContext& ctx)
{
    if (ctx.VotesCastLabel == "[BLANK]")
        return {};
    // "[DEFAULT]" (what the shipped default document holds) asks for the default text.
    if (ctx.VotesCastLabel.isEmpty() || ctx.VotesCastLabel == "[DEFAULT]")
        return QStringLiteral("Votes Cast");
    return ctx.VotesCastLabel;
}

} // namespace

void LoadVotesCastBoxes(RunContext& ctx)
{
    Guarded(ctx, kModule, "LoadVotesCastBoxes", true, [&] {
        VotesCastForm* v = ctx.vCast;
        if (!v)
            return;
        v->SetTag({});
        if (ctx.BaseType.contains("GrandHub") && ScalepadSetup(ctx) && ctx.vType == 2 && ctx.PriorMultiVote != 0)
            ctx.vType = 0;
        QString caption;
        switch (ctx.vType) {
        case 1:
            caption = ctx.VotesCastLabel == "[BLANK]" ? QString() : QStringLiteral("Time Left");
            break;
        case 2:
            caption = QStringLiteral("1st Selection");
            break;
        default:
            caption = countUpCaption(ctx);
            break;
        }
        const QString skin = FindFileNoCase(ctx.app.folder, "vcast.bmp");
        const bool skinned = !skin.isEmpty() && v->ApplySkin(skin);
        // Seconds left read best a little larger than a running count.
        const int counterSize = ctx.vType == 1 ? 28 : 24;
        v->SetLabelFontSizes(skinned ? counterSize - 4 : counterSize, skinned ? 10 : 12);
        v->SetCaptionText(caption);
        v->PlaceOverShow(ctx.vCastTop, ctx.vCastLeft);
        v->SetOpacity(1.0);
        if (ctx.arg1 != "TLXGROUP" && ctx.vType != 2)
            GrabBackground(ctx, "vCast");
    });
}

void PrepareVotesCastWindow(RunContext& ctx)
{
    Guarded(ctx, kModule, "PrepareVotesCastWindow", true, [&] {
        VotesCastForm* v = ctx.vCast;
        if (!v)
            return;
        const bool countDown = ctx.vType == 1 || ctx.SeriesVType == 1;
        if (countDown) {
            v->SetTag(QString::number(ctx.TimeLeft));
            v->SetCounterLabel(QString::number(ctx.TimeLeft), 24);
            if (ctx.CountDownManualStart) {
                v->SetPausedVisible(true);
                v->EnablePauseTimer(true);
            }
        } else {
            v->SetCounterLabel("0", 24);
            WriteDebugLog(ctx, 0, "Label to 0", kModule, "PrepareVotesCastWindow");
        }
        const bool seriesStep = ctx.arg2 == "Series vote";
        v->SetBarShown((seriesStep || !ctx.CountDownManualEnd) ? ctx.ShowVotesIndicator : true);
        if (ctx.arg1 != "TLXGROUP") {
            const int first = ctx.startFrom;
            const int last = ctx.startFrom + ctx.optionCount - 1;
            QString text;
            const QString gap = ctx.optionCount >= 6 ? QStringLiteral(" ") : QStringLiteral("   ");
            for (int i = first; i <= last; ++i)
                text += (text.isEmpty() ? QString() : gap) + QString::number(i);
            v->SetKeypadText(text);
        }
        if (countDown && !ctx.CountDownManualStart)
            v->StartCountDown(true);
        v->ShowLabels();
    });
}

void ShowVotesCast(RunContext& ctx)
{
    if (ctx.vCast && ctx.vType != 1)
        ctx.vCast->SetCounterLabel(QString::number(ctx.votesCast), 24);
}

void showMakeCast(RunContext& ctx, short options, short iteration)
{
    Guarded(ctx, kModule, "showMakeCast", false, [&] {
        qint32 count = 0;
        const QString base = ctx.BaseType;
        // Both arrays hold one element past the last keypad, which is no keypad's vote.
        if (base == "TALLIX" || base == "QVT" || base == "ZMR") {
            const qint32 top = std::min(ctx.keypadUniverse - 1, ctx.votes.ubound());
            for (qint32 k = 0; k <= top; ++k) {
                const double v = tlxVal(ctx.votes(k));
                if (v == -2 || (v >= ctx.startFrom && v <= options))
                    ++count;
            }
        } else {
            if (iteration < 0 || iteration > ctx.seriesVotes.ubound1())
                return;
            const qint32 top = std::min(ctx.keypadUniverse - 1, ctx.seriesVotes.ubound2());
            for (qint32 k = 0; k <= top; ++k) {
                const double v = ctx.seriesVotes(iteration, k);
                if (v == -2 || (v == 0 && ctx.startFrom == 0) || (v > 0 && v <= options))
                    ++count;
            }
        }
        if (ctx.SeriesVType != 1 && ctx.vCast)
            ctx.vCast->SetCounterLabel(QString::number(count), 24);
    });
}

} // namespace tallix
