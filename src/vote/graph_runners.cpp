#include "graph_runners.h"

#include "charts/chart_procedures.h"
#include "chartwindow/after_result.h"
#include "charts/collation.h"
#include "controller/comms.h"
#include "foundation/clock.h"
#include "foundation/dialogs.h"
#include "foundation/error_report.h"
#include "foundation/event_pump.h"
#include "foundation/host.h"
#include "foundation/logs.h"
#include "foundation/numbers.h"
#include "livewindow/keypads_not_voted.h"
#include "results/common_io.h"
#include "results/save_votes.h"
#include "vote/forms.h"
#include "controller/scalepad_votes.h"
#include "vote/run_context.h"
#include "vote/vote_close.h"
#include "vote/vote_driver.h"
#include "controller/free_entry_results.h"
#include "question/slide_objects.h"

namespace tallix {

namespace {

const char* kModule = "CVote";

double timeLeftShown(RunContext& ctx, double current)
{
    return ctx.vCast ? tlxVal(ctx.vCast->Tag()) : current;
}

bool resultWindowLoaded(RunContext& ctx)
{
    return FormIsLoaded(ctx, FormName::FrmTChart);
}

} // namespace

bool OnKeypadBase(const RunContext& ctx)
{
    const QString b = ctx.BaseType.toUpper();
    return b != "KBOARD" && !b.isEmpty();
}

bool StartVoteAtBase(RunContext& ctx)
{
    return ctx.comms && ctx.comms->StartVote();
}

void ShowKeyboardCaption(RunContext& ctx)
{
    if (ctx.vCast)
        ctx.vCast->SetCounterLabel("K'Board", 18);
}

void OfferStartRetry(RunContext& ctx)
{
    const int answer = ctx.dialogs->MsgBox("Unable to start vote, retry or cancel and check keypad setup",
                                           MsgBoxStyle::RetryCancel + MsgBoxStyle::Critical, "tallix");
    if (answer == MsgBoxResult::Retry) {
        short restart = 0;
        execVote(ctx, restart);
    } else {
        RecordVoteEnd(ctx, "Vote finished");
        FullShutDown(ctx);
    }
}

void WaitOnKeyboard(RunContext& ctx)
{
    ShowKeyboardCaption(ctx);
    do {
        ctx.pump->WaitForEvents(kVoteLoopWaitMs);
        RefreshKeypadsNotVoted(ctx, false);
    } while (ctx.voteEnded == 0 && ctx.voteCancelled == 0);
}

void DoCountUpGraphVote(RunContext& ctx)
{
    Guarded(ctx, kModule, "DoCountUpGraphVote", true, [&] {
        ResetVoteArrays(ctx);
        ctx.notVotedCount = 0;
        ctx.voteEnded = 0;
        if (OnKeypadBase(ctx)) {
            if (StartVoteAtBase(ctx)) {
                RefreshKeypadsNotVoted(ctx, true);
                return;   // the vote stays open, driven by events
            }
            OfferStartRetry(ctx);
            return;
        }
        WaitOnKeyboard(ctx);
    });
}

void DoCountDownGraphVote(RunContext& ctx)
{
    Guarded(ctx, kModule, "DoCountDownGraphVote", true, [&] {
        ResetVoteArrays(ctx);
        RefreshKeypadsNotVoted(ctx, false);
        ctx.voteEnded = 0;
        GrabBackground(ctx, "vCast");
        if (ctx.vCast)
            ctx.vCast->BringToFront();
        double timeLeft = ctx.TimeLeft;
        if (OnKeypadBase(ctx)) {
            if (StartVoteAtBase(ctx)) {
                do {
                    RefreshKeypadsNotVoted(ctx, false);
                    ctx.pump->WaitForEvents(kVoteLoopWaitMs);
                    timeLeft = timeLeftShown(ctx, timeLeft);
                    if (timeLeft < 1 && ctx.countDownExpired >= 2 && !ctx.CountDownManualEnd)
                        break;
                    if (ctx.voteEnded == 1)
                        break;
                } while (ctx.voteCancelled == 0);
            }
        } else {
            if (!ctx.CountDownManualStart)
                ShowKeyboardCaption(ctx);
            do {
                ctx.pump->WaitForEvents(kVoteLoopWaitMs);
                RefreshKeypadsNotVoted(ctx, false);
                timeLeft = timeLeftShown(ctx, timeLeft);
            } while (ctx.voteEnded == 0 && ctx.voteCancelled == 0 &&
                     (timeLeft > 0 || ctx.countDownExpired < 2 || ctx.CountDownManualEnd));
        }
        if (!resultWindowLoaded(ctx))
            closeVote(ctx);
        if (ctx.vCast)
            ctx.vCast->VoteClosed();
        ctx.dialogs->RestorePointer();
        if (ctx.ShowGraphs) {
            GrabBackground(ctx, "FrmTChart");
        } else {
            SaveVotes(ctx, 0);
            RecordVoteEnd(ctx, "Vote finished");
            FullShutDown(ctx);
        }
    });
}

void doCountUpDynamic(RunContext& ctx)
{
    Guarded(ctx, kModule, "doCountUpDynamic", true, [&] {
        ResetVoteArrays(ctx);
        RefreshKeypadsNotVoted(ctx, false);
        ctx.voteEnded = 0;
        if (ctx.vCast)
            ctx.vCast->SetCounterLabel("0", 24);
        if (ctx.haveTick == 2)
            ctx.haveTick = 1;   // a correct-answer mark is not kept hidden on a live chart
        ctx.pump->DoEvents();
        DisplayChartArgs args;
        args.keepCounts = -1;
        args.fadeIn = 1;
        DisplayChart(ctx, args);
        // Time for the chart to paint.
        for (int i = 0; i < 251; ++i)
            ctx.pump->DoEvents();
        GrabBackground(ctx, "vCast");
        ctx.pump->DoEvents();
        if (ctx.vCast)
            ctx.vCast->BringToFront();
        const bool open = OnKeypadBase(ctx) ? StartVoteAtBase(ctx) : true;
        if (!OnKeypadBase(ctx))
            ShowKeyboardCaption(ctx);
        if (open) {
            ctx.dynamicChartLastDraw = ctx.clock->secondsSinceMidnight();
            do {
                ctx.pump->WaitForEvents(kVoteLoopWaitMs);
                if (ctx.clock->secondsSinceMidnight() - ctx.dynamicChartLastDraw > 1.0 && ctx.liveChartDirty)
                    DrawDynamicChart(ctx);
            } while (ctx.voteEnded == 0 && ctx.voteCancelled == 0);
        }
        if (ctx.voteReceived) {
            DrawDynamicChart(ctx);
            if (ctx.vCast)
                ctx.vCast->VoteClosed();
        } else {
            if (ctx.forms)
                ctx.forms->Unload(FormName::FrmTChart);
            FullShutDown(ctx);
        }
    });
}

void EndNormalVote(RunContext& ctx)
{
    Guarded(ctx, kModule, "EndNormalVote", true, [&] {
        if (ctx.forms)
            ctx.forms->Unload(FormName::keypadsNotVoted);
        const bool reshow = ctx.arg1 == "TLXRESHOW";
        if (!reshow && !ctx.voteReceived) {
            RecordVoteEnd(ctx, "Vote finished");
            if (ctx.vType == 0 || ctx.vType == 1)
                FullShutDown(ctx);
            return;
        }
        const QString& cvt = ctx.controllerVoteType;
        const bool listVote = cvt == "3" || cvt == "5" || cvt == "1";
        if (!listVote) {
            if (ctx.voteCancelled == 0)
                SaveVotes(ctx, 0);
        } else {
            ctx.vType = 2;
            if (ctx.voteCancelled == 0)
                saveSeriesVotes(ctx);
        }
        if (ctx.FixedFree == 1 && ctx.FractionalJoltTEXT > 0) {
            JolttextVote_ResultsDisplay(ctx);
            // A word cloud is a placed picture that waits for the presenter; the answers on
            // the slide, listed or stored, are the result of every other text vote.
            if (ctx.Joltdisplay == 2 && ctx.FrmTChart) {
                GraphtoSlide(ctx, -1);
                if (!reshow)
                    AwaitPresenterAfterResult(ctx);
            } else {
                RecordVoteEnd(ctx, "Vote finished");
            }
            FullShutDown(ctx);
            return;
        }
        // Typed numbers reach their own display whatever code they were sent with.
        const bool typedNumbers = ctx.FixedFree == 1;
        if (typedNumbers && ctx.FreeNumDisplay_Type != 0) {
            Numeric_ResultsDisplay(ctx);
            RevealAnswerShape(ctx, QStringLiteral("tlx_answers"), 0);
            RecordVoteEnd(ctx, "Vote finished");
            FullShutDown(ctx);
            return;
        }
        DisplayChartArgs args;
        if (cvt == "6") {
            ScoreSum(ctx);
            ScalepadSetup(ctx);
            ctx.vType = 0;
            args.seriesCount = -1;
            args.fadeIn = 1;
            DisplayChart(ctx, args);
        } else if (!typedNumbers && (cvt == "12" || cvt == "99")) {
            ctx.vType = 0;
            // A long list of single choices is one series of totals like any other vote.
            args.seriesCount = 1;
            args.fadeIn = 2;
            DisplayChart(ctx, args);
        } else if (ctx.vType == 2) {
            DisplayMultiChart(ctx, ctx.DisplayBy, ctx.Iterations, reshow);
        } else {
            if (typedNumbers) {
                // The typed numbers become choices of the answer ranges, charted as any vote.
                Fraction_ResultsConversion(ctx);
                RevealAnswerShape(ctx, QStringLiteral("tlx_answers"), 0);
            }
            args.filterSet = reshow ? -1 : 0;
            args.fadeIn = 1;
            DisplayChart(ctx, args);
        }
        ShowLegend(ctx);
        // A chart that does not grow is built unseen; a growing one fades itself in.
        if (ctx.GraphPlotting == 0 && ctx.FrmTChart)
            ctx.FrmTChart->ShowMe();
        if (ctx.haveTick > 0)
            DisplayTick(ctx);
        if (reshow)
            ctx.currentSlide = short(tlxVal(ctx.arg2));
        GraphtoSlide(ctx, -1);
        if (!reshow) {
            // No show displays the picture here, so the result window is what the
            // audience sees: it stays up until the presenter moves on.
            AwaitPresenterAfterResult(ctx);
            FullShutDown(ctx);
        }
    });
}

} // namespace tallix
