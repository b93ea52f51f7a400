#include "series_runners.h"

#include "charts/chart_procedures.h"
#include "chartwindow/after_result.h"
#include "controller/comms.h"
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

const char* kGraphModule = "CVote";
const char* kTextModule = "Tvote";

void allocateSelections(RunContext& ctx)
{
    ctx.seriesVotes.redim(ctx.Iterations, ctx.keypadUniverse);
    for (int it = 0; it < ctx.Iterations; ++it)
        for (int k = 0; k < ctx.keypadUniverse; ++k)
            ctx.seriesVotes(it, k) = -1;
    for (int k = 0; k <= ctx.votes.ubound(); ++k)
        ctx.votes(k) = QStringLiteral("-1");
}

// A counted-down selection ends when its time is up, as a counted-down vote does.
bool timeIsUp(RunContext& ctx)
{
    if (ctx.SeriesVType != 1 || ctx.CountDownManualEnd || ctx.countDownExpired < 2)
        return false;
    return !ctx.vCast || tlxVal(ctx.vCast->Tag()) < 1;
}

void waitForSelectionEnd(RunContext& ctx, bool refreshNotVoted, bool leaveOnCancel)
{
    for (;;) {
        ctx.pump->WaitForEvents(kVoteLoopWaitMs);
        if (refreshNotVoted)
            RefreshKeypadsNotVoted(ctx, false);
        if (ctx.voteEnded != 0 || (leaveOnCancel && ctx.voteCancelled != 0))
            return;
        if (timeIsUp(ctx)) {
            ctx.voteEnded = 1;
            return;
        }
    }
}

// The window and the arrays made ready for the next selection.
void nextSelection(RunContext& ctx)
{
    ctx.voteEnded = 0;
    ResetVoteArrays(ctx);
    if (ctx.vCast) {
        ctx.vCast->ResetKeyboardKeypad();
        ctx.vCast->SetIterationCounter(ctx.vCast->IterationCounter() + 1);
    }
    ctx.notVotedCount = 0;
}

void closeSelections(RunContext& ctx)
{
    if (ctx.vCast)
        ctx.vCast->VoteClosed();
    if (ctx.forms)
        ctx.forms->Unload(FormName::keypadsNotVoted);
    // The bases stop taking votes once the last selection is closed.
    if (ctx.comms)
        ctx.comms->EndVote();
    ctx.pump->DoEvents();
}

// Runs the selections, one opening each, until all are made or one is broken off.
template <class Wait, class AfterWait>
void runSelections(RunContext& ctx, bool openOnBase, Wait wait, AfterWait afterWait)
{
    allocateSelections(ctx);
    RefreshKeypadsNotVoted(ctx, false);
    ctx.voteEnded = 0;
    if (ctx.vCast)
        ctx.vCast->SetIterationCounter(0);
    for (ctx.currentIteration = 0; ctx.currentIteration < ctx.Iterations; ++ctx.currentIteration) {
        ctx.votesCast = 0;   // first: the window may take a vote while it is dressed
        StartSeriesIteration(ctx, short(ctx.currentIteration + 1));
        if (!openOnBase || !OnKeypadBase(ctx) || StartVoteAtBase(ctx))
            wait();
        afterWait();
        if (ctx.voteEnded != 1) {
            ctx.voteEnded = 0;
            break;
        }
        nextSelection(ctx);
    }
    closeSelections(ctx);
}

void writeTally(RunContext& ctx, const VbArray<double>& counts, bool& counted)
{
    double total = 0;
    for (double c : counts)
        total += c;
    counted = total > 0;
    if (counted)
        WriteTextResults(ctx, counts, total);
}

} // namespace

QString SelectionOrdinal(int n)
{
    switch (n) {
    case 1: return QStringLiteral("1st");
    case 2: return QStringLiteral("2nd");
    case 3: return QStringLiteral("3rd");
    default: return n >= 4 && n <= 11 ? QString::number(n) + QStringLiteral("th") : QString();
    }
}

void StartSeriesIteration(RunContext& ctx, short n)
{
    Guarded(ctx, kGraphModule, "StartSeriesIteration", false, [&] {
        VotesCastForm* v = ctx.vCast;
        if (!v)
            return;
        v->SetCaption(SelectionOrdinal(n) + QStringLiteral(" selection"), 12);
        v->SetCounterLabel(QStringLiteral("0"), 24);
        if (ctx.SeriesVType != 1)
            return;
        v->ClearCountDown();
        v->SetTag(QString::number(ctx.TimeLeft));
        if (ctx.CountDownManualStart) {
            v->SetCounterLabel(QString(), 18);
            v->SetPausedVisible(true);
            v->EnablePauseTimer(true);
        } else {
            v->StartCountDown(true);
        }
    });
}

void DoSeriesGraphVote(RunContext& ctx)
{
    Guarded(ctx, kGraphModule, "DoSeriesGraphVote", true, [&] {
        const bool base = OnKeypadBase(ctx);
        runSelections(
            ctx, true,
            [&] {
                if (!base && !ctx.CountDownManualStart)
                    ShowKeyboardCaption(ctx);
                waitForSelectionEnd(ctx, false, true);
            },
            [] {});
        saveSeriesVotes(ctx);
        if (ctx.comms)
            ctx.comms->setTxt_data(QString());
        DisplayMultiChart(ctx, ctx.DisplayBy, ctx.Iterations, false);
        if (ctx.haveTick > 0)
            DisplayTick(ctx);
        GraphtoSlide(ctx, -1);
        // No show displays the picture here: the result window waits for the presenter.
        AwaitPresenterAfterResult(ctx);
        FullShutDown(ctx);
    });
}

void DoSeriesTextVote(RunContext& ctx)
{
    Guarded(ctx, kTextModule, "DoSeriesTextVote", true, [&] {
        const QString& base = ctx.BaseType;
        runSelections(
            ctx, true,
            [&] {
                if (base == "YK") {
                    waitForSelectionEnd(ctx, true, false);
                } else if (base == "TALLIX" || base == "ZMR" || base == "QVT") {
                    waitForSelectionEnd(ctx, true, true);
                } else {
                    ShowKeyboardCaption(ctx);
                    waitForSelectionEnd(ctx, true, false);
                }
            },
            [&] {
                // A text series keeps its selections itself.
                const int row = ctx.currentIteration;
                const int top = std::min({ctx.keypadUniverse, ctx.votes.ubound(), ctx.seriesVotes.ubound2()});
                if (row <= ctx.seriesVotes.ubound1())
                    for (int k = 0; k <= top; ++k)
                        ctx.seriesVotes(row, k) = float(tlxVal(ctx.votes(k)));
            });
        if (ctx.vType != 3 && ctx.ShowGraphs) {
            ShowSeriesTextResults(ctx);
            if (ctx.DisplayBy == 1 || ctx.DisplayBy == 2)
                for (short i = 0; i < ctx.Iterations; ++i)
                    ShowSeriesTextResultsSplitByIteration(ctx, i);
            GrabBackground(ctx, "vCast");
        }
        saveSeriesVotes(ctx);
        RecordVoteEnd(ctx, "Vote finished");
        FullShutDown(ctx);
    });
}

VbArray<double> TallySeriesSelections(const RunContext& ctx, short iteration)
{
    VbArray<double> counts(ctx.optionCount - 1, 0.0);
    const int first = iteration < 0 ? 0 : iteration;
    const int last = iteration < 0 ? ctx.Iterations - 1 : iteration;
    const int keypads = std::min(ctx.keypadUniverse - 1, ctx.seriesVotes.ubound2());
    for (int t = first; t <= last && t <= ctx.seriesVotes.ubound1(); ++t) {
        for (int k = 0; k <= keypads; ++k) {
            const double v = ctx.seriesVotes(t, k);
            if (ctx.startFrom != 0 && v > 0 && v <= ctx.optionCount)
                counts(int(v) - 1) += 1;
            else if (ctx.startFrom == 0 && v >= 0 && v < ctx.optionCount)
                counts(int(v)) += 1;
        }
    }
    return counts;
}

bool ShowSeriesTextResults(RunContext& ctx)
{
    bool counted = false;
    Guarded(ctx, kTextModule, "ShowSeriesTextResults", false, [&] {
        ctx.textResultsIteration = -1;
        writeTally(ctx, TallySeriesSelections(ctx, -1), counted);
    });
    return counted;
}

bool ShowSeriesTextResultsSplitByIteration(RunContext& ctx, short iteration)
{
    bool counted = false;
    Guarded(ctx, kTextModule, "ShowSeriesTextResultsSplitByIteration", false, [&] {
        ctx.textResultsIteration = iteration;
        writeTally(ctx, TallySeriesSelections(ctx, iteration), counted);
    });
    ctx.textResultsIteration = -1;
    return counted;
}

void ResetSeriesColours(RunContext& ctx, qint32 colour)
{
    ctx.seriesColours.redim(10);
    for (int i = 0; i <= 10; ++i)
        ctx.seriesColours(i) = colour >= 0 ? colour : (i <= ctx.optionColours.ubound() ? ctx.optionColours(i) : 0);
}

} // namespace tallix
