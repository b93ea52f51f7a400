#include "rating_runners.h"

#include "charts/chart_procedures.h"
#include "charts/rank_markers.h"
#include "chartwindow/after_result.h"
#include "foundation/dialogs.h"
#include "foundation/error_report.h"
#include "foundation/event_pump.h"
#include "foundation/numbers.h"
#include "livewindow/keypads_not_voted.h"
#include "results/common_io.h"
#include "results/save_votes.h"
#include "vote/forms.h"
#include "vote/graph_runners.h"
#include "vote/run_context.h"
#include "vote/vote_close.h"
#include "vote/votes_cast_boxes.h"

namespace tallix {

namespace {

const char* kModule = "Rvote";

// Each item has a votes-cast window of its own: the last item's closed with it.
void openItemWindow(RunContext& ctx)
{
    if (ctx.vCast)
        return;
    if (ctx.forms)
        ctx.forms->Load(FormName::vCast);
    LoadVotesCastBoxes(ctx);
    PrepareVotesCastWindow(ctx);
}

void startItem(RunContext& ctx, short item)
{
    ResetVoteArrays(ctx);
    openItemWindow(ctx);
    GrabBackground(ctx, "vCast");
    ctx.notVotedCount = 0;
    ctx.voteEnded = 0;
    positionCurrentRankIndicator(ctx, item);
    RefreshKeypadsNotVoted(ctx, false);
    // The open item's keys go to its window, never to an earlier item's result.
    if (ctx.vCast)
        ctx.vCast->BringToFront();
}

} // namespace

void DoCountUpRankVote(RunContext& ctx, short item)
{
    Guarded(ctx, kModule, "DoCountUpRankVote", true, [&] {
        startItem(ctx, item);
        if (ctx.vCast)
            ctx.vCast->SetCounterLabel(QStringLiteral("0"), 24);
        if (OnKeypadBase(ctx)) {
            if (StartVoteAtBase(ctx))
                RefreshKeypadsNotVoted(ctx, true);
            return;   // the item stays open, driven by events
        }
        WaitOnKeyboard(ctx);
    });
}

void DoCountDownRankVote(RunContext& ctx, short item)
{
    Guarded(ctx, kModule, "DoCountDownRankVote", true, [&] {
        startItem(ctx, item);
        double timeLeft = ctx.TimeLeft;
        auto runsOn = [&] {
            if (ctx.vCast)
                timeLeft = tlxVal(ctx.vCast->Tag());
            return ctx.voteEnded == 0 && ctx.voteCancelled == 0 &&
                   (timeLeft > 0 || ctx.countDownExpired < 2 || ctx.CountDownManualEnd);
        };
        if (OnKeypadBase(ctx)) {
            if (StartVoteAtBase(ctx))
                do {
                    RefreshKeypadsNotVoted(ctx, false);
                    ctx.pump->WaitForEvents(kVoteLoopWaitMs);
                } while (runsOn());
        } else {
            if (!ctx.CountDownManualStart)
                ShowKeyboardCaption(ctx);
            // A window that has gone ends the wait.
            do {
                ctx.pump->WaitForEvents(kVoteLoopWaitMs);
                RefreshKeypadsNotVoted(ctx, false);
            } while (ctx.vCast && runsOn());
        }
        // Every item closes, whether or not an earlier item's result is up.
        if (ctx.voteEnded != 1)
            closeVote(ctx);
    });
}

void CloseRankItem(RunContext& ctx)
{
    ctx.internalRestart = false;
    hideCurrentRankIndicator(ctx, ctx.rankItemIndex);
    if (ctx.forms) {
        ctx.forms->Unload(FormName::keypadsNotVoted);
        ctx.forms->Unload(FormName::vCast);
    }
    ctx.pump->DoEvents();
}

void EndRankVote(RunContext& ctx)
{
    Guarded(ctx, kModule, "EndRankVote", true, [&] {
        CloseRankItem(ctx);
        if (ctx.rankItemIndex > ctx.NumberRankVotes)
            return;
        const short item = short(ctx.rankItemIndex + 1);
        if (ctx.vType != 3 && ctx.ShowGraphs && ctx.voteCancelled != 1) {
            if (ctx.rankDisplayOptions != 0) {
                DisplayRatingChart(ctx, item);
            } else {
                HideRatingDistribution(ctx);
                DisplayRatingChart(ctx, item);
                GraphtoSlide(ctx, item);
            }
        }
        if (ctx.voteCancelled == 0)
            SaveVotes(ctx, ctx.rankItemIndex);
        ++ctx.rankItemIndex;
        if (ctx.rankItemIndex < ctx.NumberRankVotes)
            return;
        showRankResultsAll(ctx);
        ctx.ratingVoteOpen = false;
        const bool reshow = ctx.arg1 == "TLXRESHOW";
        if (!reshow)
            GraphtoSlide(ctx, -1);
        RecordVoteEnd(ctx, "Vote finished");
        if (!reshow) {
            // Every item's bar stands on view until the presenter moves on.
            AwaitPresenterAfterResult(ctx);
            FullShutDown(ctx);
        }
    });
}

} // namespace tallix
