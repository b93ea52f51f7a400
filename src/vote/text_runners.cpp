#include "text_runners.h"

#include "charts/chart_procedures.h"
#include "charts/collation.h"
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
#include "vote/text_results.h"
#include "vote/vote_close.h"

namespace tallix {

namespace {

const char* kModule = "Tvote";

void fillNotVoted(RunContext& ctx)
{
    for (int k = 0; k < ctx.keypadUniverse && k <= ctx.votes.ubound(); ++k)
        ctx.votes(k) = QStringLiteral("-1");
}

double timeLeftShown(RunContext& ctx, double current)
{
    return ctx.vCast ? tlxVal(ctx.vCast->Tag()) : current;
}

bool timeRunsOn(RunContext& ctx, double timeLeft)
{
    return ctx.voteEnded == 0 && ctx.voteCancelled == 0 &&
           (timeLeft > 0 || ctx.countDownExpired < 2 || ctx.CountDownManualEnd);
}

} // namespace

void DoCountUpTextVote(RunContext& ctx, qint32 /*questionIndex*/)
{
    Guarded(ctx, kModule, "DoCountUpTextVote", true, [&] {
        fillNotVoted(ctx);
        RefreshKeypadsNotVoted(ctx, false);
        GrabBackground(ctx, "vCast");
        ctx.notVotedCount = 0;
        ctx.voteEnded = 0;
        if (ctx.vCast)
            ctx.vCast->SetCounterLabel(QStringLiteral("0"), 24);
        ctx.pump->DoEvents();
        if (OnKeypadBase(ctx)) {
            if (StartVoteAtBase(ctx)) {
                RefreshKeypadsNotVoted(ctx, true);
                ctx.pump->DoEvents();
            }
            return;   // the vote stays open, driven by events
        }
        WaitOnKeyboard(ctx);
    });
}

void DoCountDownTextVote(RunContext& ctx, qint32 /*questionIndex*/)
{
    Guarded(ctx, kModule, "DoCountDownTextVote", true, [&] {
        fillNotVoted(ctx);
        RefreshKeypadsNotVoted(ctx, false);
        ctx.voteEnded = 0;
        double timeLeft = ctx.TimeLeft;
        GrabBackground(ctx, "vCast");
        if (ctx.vCast)
            ctx.vCast->BringToFront();
        ctx.pump->DoEvents();
        const bool base = OnKeypadBase(ctx);
        if (!base || StartVoteAtBase(ctx)) {
            do {
                RefreshKeypadsNotVoted(ctx, false);
                ctx.pump->WaitForEvents(kVoteLoopWaitMs);
                timeLeft = timeLeftShown(ctx, timeLeft);
            } while (timeRunsOn(ctx, timeLeft));
        }
        // Closing saves the votes and writes the tables; saving here as well would keep
        // the keyboard's votes twice.
        if (!FormIsLoaded(ctx, FormName::FrmTChart))
            closeVote(ctx);
        if (ctx.vCast)
            ctx.vCast->VoteClosed();
        ctx.dialogs->RestorePointer();
        FullShutDown(ctx);
    });
}

void EndTextVote(RunContext& ctx)
{
    Guarded(ctx, kModule, "EndTextVote", true, [&] {
        if (ctx.forms)
            ctx.forms->Unload(FormName::keypadsNotVoted);
        SaveVotes(ctx, 0);
        short filter = 0, sample = 0, keep = 0;
        CollateVotes(ctx, filter, sample, keep);
        WriteTextResults(ctx, ctx.optionCounts, ctx.weightedVoteTotal);
        // The tables on the slide are the result: nothing waits for the presenter.
        RecordVoteEnd(ctx, "Vote finished");
        FullShutDown(ctx);
    });
}

} // namespace tallix
