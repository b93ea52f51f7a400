#include "vote_close.h"

#include "charts/chart_procedures.h"
#include "charts/collation.h"
#include "chartwindow/after_result.h"
#include "controller/comms.h"
#include "foundation/clock.h"
#include "foundation/dialogs.h"
#include "foundation/error_report.h"
#include "foundation/event_pump.h"
#include "foundation/host.h"
#include "foundation/logs.h"
#include "foundation/numbers.h"
#include "livewindow/keypads_not_voted.h"
#include "livewindow/window_placement.h"
#include "question/columns_vote_xml.h"
#include "question/settings_document.h"
#include "results/common_io.h"
#include "results/load_votes.h"
#include "vote/forms.h"
#include "vote/graph_runners.h"
#include "question/slide_objects.h"
#include "controller/scalepad_votes.h"
#include "vote/run_context.h"
#include "vote/vote_driver.h"
#include "vote/rating_runners.h"
#include "vote/text_runners.h"
#include "vote/vote_main.h"
#include "vote/votes_cast_boxes.h"

namespace tallix {

namespace {

const char* kModule = "Vote";

// Waits while the program goes on handling its events.
void waitPumping(RunContext& ctx, double seconds)
{
    const double start = ctx.clock->secondsSinceMidnight();
    for (;;) {
        const double t = ctx.clock->secondsSinceMidnight() - start;
        if (t < 0 || t >= seconds)   // a jump back at midnight ends the wait
            break;
        ctx.pump->WaitForEvents(int(std::min(50.0, (seconds - t) * 1000 + 1)));
    }
}

void unloadAllButComms(RunContext& ctx)
{
    if (!ctx.forms)
        return;
    const QStringList loaded = ctx.forms->LoadedForms();
    for (qsizetype i = loaded.size() - 1; i >= 0; --i)
        if (loaded[i] != FormName::comms)
            ctx.forms->Unload(loaded[i]);
}

host::Slide* slideAt(RunContext& ctx, short index)
{
    if (!ctx.oPres)
        return nullptr;
    host::Slides* slides = ctx.oPres->GetSlides();
    if (!slides || index < 1 || index > slides->Count())
        return nullptr;
    return slides->Item(index);
}

} // namespace

void closeVote(RunContext& ctx)
{
    Guarded(ctx, kModule, "closeVote", true, [&] {
        ctx.votesCast = 0;
        ctx.voteEnded = 1;
        if (ctx.forms)
            ctx.forms->Unload(FormName::keypadsNotVoted);
        if (ctx.vCast)
            ctx.vCast->VoteClosed();
        MoveCursorTopRight(ctx);
        bool ended = false;
        const bool single = ctx.vType == 0 || ctx.vType == 1 || ctx.vType == 3 || ctx.vType == 4;
        const bool text = ctx.GraphType == 6 || ctx.GraphType == 8;
        if (single) {
            if (text) {
                EndTextVote(ctx);
            } else if (ctx.GraphType == 7) {
                if (ctx.comms)
                    ctx.comms->EndVote();
                ended = true;
                waitPumping(ctx, 0.3);
                EndRankVote(ctx);
            } else {
                EndNormalVote(ctx);
            }
        } else if (ctx.vType == 2 && ctx.controllerVoteType != "9") {
            EndNormalVote(ctx);
        }
        if (single && ctx.GraphType == 7) {
            if (!ended && ctx.comms) {
                ctx.comms->EndVote();
                ended = true;
            }
            if (ctx.rankItemIndex >= ctx.NumberRankVotes) {
                showRankResultsAll(ctx);
                RefreshResult(ctx);
                GrabBackground(ctx, "FrmTChart");
                ctx.ratingVoteOpen = false;
            } else {
                short item = ctx.rankItemIndex;
                execVote(ctx, item);
            }
        }
        if (!ended && ctx.comms)
            ctx.comms->EndVote();
    });
}

void execRevote(RunContext& ctx, short slideBefore, short slideAfter)
{
    Guarded(ctx, kModule, "execRevote", true, [&] {
        if (Desktop().releaseCursorClip)
            Desktop().releaseCursorClip();
        try {
            if (host::Slide* s = slideAt(ctx, ctx.currentSlide))
                if (host::Shape* label = s->GetShapes()->Item("tlxLoadingLabel"))
                    label->Delete();
        } catch (const ProcessExit&) {
            throw;
        } catch (...) {
        }
        if (ctx.vCast)
            ctx.vCast->DisableRevoteTimers();
        if (slideBefore != 0)
            ctx.currentSlide = slideBefore;
        const QString reference = QString::number(ctx.currentSlide) + ":Revote";
        if (ctx.controllerVoteType != "6" && ctx.UseUserWeighting != 1 && ctx.vType == 2) {
            if (ctx.seriesVotes.ubound1() < ctx.Iterations - 1 || ctx.seriesVotes.ubound2() < ctx.keypadUniverse - 1)
                ctx.seriesVotes.redimPreserve(ctx.Iterations, ctx.keypadUniverse);
            for (short i = 0; i <= ctx.Iterations - 1; ++i) {
                // A selection with no saved line is drawn empty, never with what the live
                // vote had put in its row.
                const bool loaded = LoadVotes(ctx, reference, i);
                for (qint32 k = 0; k <= ctx.seriesVotes.ubound2(); ++k)
                    ctx.seriesVotes(i, k) = loaded && k <= ctx.votes.ubound() - 1 ? float(tlxVal(ctx.votes(k))) : -1.0f;
            }
            if (slideAfter != 0)
                ctx.currentSlide = slideAfter;
            DisplayMultiChart(ctx, ctx.DisplayBy, ctx.Iterations, ctx.groupFilter.ubound() > 0);
            GraphtoSlide(ctx, -1);
            if (ctx.arg1 != "TLXRESHOW")
                AwaitPresenterAfterResult(ctx);
        } else {
            LoadVotes(ctx, reference, -1);
            if (ctx.GraphType == 6 || ctx.GraphType == 8) {
                EndTextVote(ctx);
            } else if (ctx.GraphType == 7) {
                ScalepadSetup(ctx);
                const qint32 keypads = ctx.keypadUniverse;
                for (short i = 1; i <= ctx.NumberRankVotes; ++i) {
                    // An item without a saved line is drawn empty.
                    if (!LoadVotes(ctx, reference, short(i - 1))) {
                        ctx.keypadUniverse = keypads;
                        ResetVoteArrays(ctx);
                    }
                    for (qint32 k = 0; k <= ctx.votes.ubound() - 1; ++k)
                        if (i <= ctx.ratingVotes.ubound1() && k <= ctx.ratingVotes.ubound2())
                            ctx.ratingVotes(i, k) = short(tlxVal(ctx.votes(k)));
                    if (slideAfter != 0)
                        ctx.currentSlide = slideAfter;
                    DisplayRatingChart(ctx, i);
                }
                if (slideAfter != 0)
                    ctx.currentSlide = slideAfter;
                GraphtoSlide(ctx, -1);
                // Drawn and placed: of the item's end only the closing of its windows is left.
                CloseRankItem(ctx);
                if (ctx.arg1 != "TLXRESHOW")
                    AwaitPresenterAfterResult(ctx);
            } else {
                if (slideAfter != 0)
                    ctx.currentSlide = slideAfter;
                EndNormalVote(ctx);
            }
        }
        const QString reason = ReadVoteEnd(ctx);
        if (reason == "reVote" || reason == "doVote") {
            try {
                if (ctx.forms) {
                    const QStringList loaded = ctx.forms->LoadedForms();
                    for (qsizetype i = loaded.size() - 1; i >= 0; --i) {
                        const QString n = loaded[i].toLower();
                        if (n == "vcast" || n == "cdown" || n == "make") {
                            if (n == "vcast" && ctx.vCast)
                                ctx.vCast->KeyInput('r');
                            break;
                        }
                    }
                }
            } catch (const ProcessExit&) {
                throw;
            } catch (...) {
            }
        } else if (reason == "Vote finished Revote") {
            ctx.rankItemIndex = 0;
            unloadAllButComms(ctx);
            ctx.pump->DoEvents();
            ctx.internalRestart = true;
            ctx.ratingVoteStarted = 0;
            Main(ctx);
        }
        // "instaGraph"/"instaQ": the macro already runs; the rest need nothing here.
    });
}

void RunRevote(RunContext& ctx)
{
    Guarded(ctx, "vcast", "RunRevote", true, [&] {
        ctx.internalRestart = true;
        unloadAllButComms(ctx);
        ResetVoteArrays(ctx);
        ctx.notVotedShown = false;
        waitPumping(ctx, 0.2);
        ctx.pump->DoEvents();
        waitPumping(ctx, 0.2);
        QString xml;
        if (host::Slide* s = slideAt(ctx, ctx.currentSlide))
            xml = s->GetTags()->Item("TLXVOTE");
        if (!ctx.settingsDoc)
            ctx.settingsDoc = std::make_unique<SettingsDocument>();
        if (!ctx.settingsDoc->loadXML(xml)) {
            const ParseError& e = ctx.settingsDoc->parseError();
            ctx.dialogs->MsgBox(QString::number(e.errorCode) + "\r\n" + e.reason +
                                    "\r\nError loading vote information\r\nvote error",
                                MsgBoxStyle::Critical, "vote error");
            RecordVoteEnd(ctx, "Unable to load vote info");
            FullShutDown(ctx);
            return;
        }
        SetVarsFromXML(ctx);
        ctx.voteReceived = false;
        if (ctx.forms && !ctx.forms->IsLoaded(FormName::vCast))
            ctx.forms->Load(FormName::vCast);
        LoadVotesCastBoxes(ctx);
        PrepareVotesCastWindow(ctx);
        short restart = 0;
        execVote(ctx, restart);
        ctx.internalRestart = true;
    });
}

void EndProcessAfterFailure(RunContext& ctx)
{
    WriteDebugLog(ctx, 0, "Ended after a runtime error", kModule, "EndProcessAfterFailure");
    if (ctx.terminator)
        ctx.terminator(1);
}

void FullShutDown(RunContext& ctx)
{
    if (ctx.shuttingDown) {
        WriteDebugLog(ctx, 0, "Already shutting down", kModule, "FullShutDown");
        return;
    }
    ctx.shuttingDown = true;
    struct Done {
        RunContext& ctx;
        ~Done() { ctx.shuttingDown = false; }
    } done{ctx};
    bool chained = false;
    Guarded(ctx, kModule, "FullShutdown", false, [&] {
        ctx.voteRunning = false;
        WriteDebugLog(ctx, 0, "Finish - arg4 = " + ctx.arg4, kModule, "FullShutDown");
        // The result must reach the file whatever the save setting says; the setting
        // only decides whether we say so.
        if (ctx.CommitPresentation)
            ctx.CommitPresentation();
        if (!ctx.ini.disablePPTSaveAfterVoteClose)
            WriteDebugLog(ctx, 0, "Presentation Saved", kModule, "FullShutDown");
        int slideCount = 0;
        if (ctx.oPres && ctx.oPres->GetSlides())
            slideCount = ctx.oPres->GetSlides()->Count();
        if (ctx.arg5 == "ALL" && tlxVal(ctx.arg4) < slideCount) {
            ctx.arg4 = QString::number(qint64(tlxVal(ctx.arg4)) + 1);
            if (ctx.vCast)
                ctx.vCast->SetProgressValue(int(tlxVal(ctx.arg4)));
            chained = true;
            ctx.shuttingDown = false;   // the next slide's vote ends by its own shutdown
            Main(ctx);
            return;
        }
        if (ctx.arg5 == "ALL" && ctx.oPPT)
            ctx.oPPT->Run("nowExpandAllCharts");   // committed just above
        // Errors ignored, finding the slide included: the rest of the shutdown must run.
        IgnoringErrors([&] { RemoveObjectsAutomaticallyAddedByPPT(ctx, SlideAt(ctx, ctx.currentSlide)); });
        if (ctx.arg1 != "TLXRESHOW" && ctx.comms)
            ctx.comms->SendCommandToController("DeleteTask=Vote,Voting...\r\nEndVote");
        try {
            if (ctx.oPres)
                ctx.oPres->GetTags()->Delete("tlxActivity");
        } catch (const ProcessExit&) {
            throw;
        } catch (...) {
        }
        try {
            if (ctx.oPPT && ctx.oPPT->SlideShowWindowsCount() > 0) {
                host::Slide* s = ctx.oPPT->SlideShowWindows(1)->GetView()->GetSlide();
                // Even past the last slide: what the macro does then is its own matter.
                const int next = s ? s->SlideIndex() + 1 : 1;
                WriteDebugLog(ctx, 0, "PreLoadVoteConfig " + QString::number(next), kModule, "FullShutDown");
                // The macro may read the deck: it must see this run's changes.
                if (ctx.CommitPresentation)
                    ctx.CommitPresentation();
                ctx.oPPT->Run("PreLoadVoteConfig", QString::number(next));
            }
        } catch (const ProcessExit&) {
            throw;
        } catch (...) {
        }
        if (ctx.forms && ctx.forms->IsLoaded(FormName::vCast))
            ctx.forms->Unload(FormName::vCast);
        MoveCursorTopRight(ctx);
        if (Desktop().releaseCursorClip)
            Desktop().releaseCursorClip();
        ctx.dialogs->RestorePointer();
        if (ctx.AutoAdvance) {
            waitPumping(ctx, ctx.AutoAdvanceTime);
            if (ctx.forms)
                ctx.forms->FadeOutAll();
            if (ctx.comms)
                ctx.comms->SendCommandToController("NEXTSLIDE," + QString::number(ctx.currentSlide));
        }
        WriteDebugLog(ctx, 0, "Focus to the slide show", kModule, "FullShutDown");
    });
    if (chained)
        return;   // the next pass of the ALL run ends the process itself
    if (ctx.terminator)
        ctx.terminator(0);
}

} // namespace tallix
