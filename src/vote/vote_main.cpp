#include "vote_main.h"

#include "charts/chart_colours.h"
#include "controller/comms.h"
#include "foundation/vb_error.h"
#include "foundation/clock.h"
#include "foundation/dialogs.h"
#include "foundation/error_report.h"
#include "foundation/event_pump.h"
#include "foundation/host.h"
#include "foundation/logs.h"
#include "foundation/numbers.h"
#include "livewindow/window_placement.h"
#include "question/columns_vote_xml.h"
#include "question/common_xml.h"
#include "question/io_vote_setup.h"
#include "question/settings_document.h"
#include "question/slide_objects.h"
#include "reshow/reshow_setup.h"
#include "results/common_io.h"
#include "vote/forms.h"
#include "vote/instances.h"
#include "vote/not_built.h"
#include "reshow/reshow_display.h"
#include "vote/run_context.h"
#include "vote/series_runners.h"
#include "vote/vote_close.h"
#include "vote/vote_driver.h"
#include "vote/votes_cast_boxes.h"

namespace tallix {

namespace {

const char* const kModule = "Vote";

void log(RunContext& ctx, const QString& text, float elapsed = 0)
{
    WriteDebugLog(ctx, elapsed, text, kModule, "Main");
}

float since(RunContext& ctx, qint64 t0)
{
    return float(CounterSeconds(ctx, t0, ctx.clock->perfCounter()));
}


bool showRunning(RunContext& ctx)
{
    return ctx.oPPT->SlideShowWindowsCount() > 0;
}

int showSlide(RunContext& ctx)
{
    return ctx.oPPT->SlideShowWindows(1)->GetView()->GetSlide()->SlideIndex();
}

// The whole-word actions of the debug prompt.
QString debugAction(const QString& answer)
{
    const QString a = answer.toUpper();
    if (a == "V")
        return "TLXVOTE";
    if (a == "G")
        return "TLXGROUP";
    if (a == "R")
        return "TLXRESHOW";
    return a;
}

void hideShapesNamed(RunContext& ctx, const QString& part)
{
    host::Shapes* shapes = SlideAt(ctx, ctx.currentSlide)->GetShapes();
    for (int i = shapes->Count(); i >= 1; --i)
        if (shapes->Item(i)->Name().contains(part))
            shapes->Item(i)->SetVisible(false);
}

void deleteRatingShapes(RunContext& ctx)
{
    host::Shapes* shapes = SlideAt(ctx, ctx.currentSlide)->GetShapes();
    bool again = true;
    while (again) {
        again = false;
        for (int i = shapes->Count(); i >= 1; --i)
            if (shapes->Item(i)->Name().contains("tallix ratings")) {
                shapes->Item(i)->Delete();
                again = true;
                break;
            }
    }
}

// Object votes keep each option's shape position in the document, and the result an
// earlier run left in the option's own table (row 1, last cell) is cleared. The answers
// table carries the texts the controller is sent and is never touched. The pass has
// one handler: its first failure (a missing shape, a shape with no table) ends it.
void prepareObjectVote(RunContext& ctx)
{
    const qint64 t0 = ctx.clock->perfCounter();
    IgnoringErrors([&] {
        host::Slide* slide = SlideAt(ctx, ctx.currentSlide);
        for (int i = 1; i <= ctx.optionCount; ++i) {
            const QString name = QStringLiteral("tlx_object%1").arg(i);
            host::Shape* shape = slide->GetShapes()->Item(name);
            const QString top = XMLGetItem("Top", XMLGetString(ctx, name));
            if (tlxVal(top) != shape->Top()) {
                XMLSetSingleNode(ctx, name, "Top", shape->Top());
                XMLSetSingleNode(ctx, name, "Left", shape->Left());
                XMLSetSingleNode(ctx, name, "Width", shape->Width());
                XMLSetSingleNode(ctx, name, "Height", shape->Height());
            }
            host::Table* table = shape->GetTable();
            host::TextFrame* cell = table->Cell(1, table->ColumnCount());
            if (cell->Length() > 0)
                cell->SetText(QString());
        }
        log(ctx, "Object Vote Hide results", since(ctx, t0));
        SaveXMLtoPPTSlide(ctx, settingsDocOf(ctx), 0);
    });
}

// A former vote process may still be running: ask it to go, for at most a second.
// Whether it has recorded its end is its own answer; the deck file's tag is never
// asked, since another process's uncommitted delete leaves it stale.
void closeFormerInstance(RunContext& ctx)
{
    if (!ctx.instances)
        return;
    if (!ctx.internalRestart && ctx.instances->PrevInstance()) {
        const double start = ctx.clock->secondsSinceMidnight();
        while (ctx.instances->PrevInstance() && ctx.clock->secondsSinceMidnight() - start < 1.0) {
            CheckStillOnSlide(ctx);
            log(ctx, "CLOSING APPLICATION: Vote");
            ctx.instances->CloseOthers();
            ctx.pump->WaitForEvents(20);
        }
        // It may have written the deck on its way out.
        if (ctx.ReloadPresentation)
            ctx.ReloadPresentation();
    }
    ctx.instances->StartAnswering();
}

} // namespace

void SplitLaunchString(RunContext& ctx, const QString& commandLine)
{
    // arg1 takes the whole line first, so an empty line leaves it empty.
    ctx.arg1 = commandLine;
    const QStringList pieces = commandLine.split(',');
    QString* args[] = {&ctx.arg1, &ctx.arg2, &ctx.arg3, &ctx.arg4, &ctx.arg5};
    for (int i = 0; i < pieces.size() && i < 5; ++i)
        *args[i] = pieces[i].trimmed().toUpper();
    // A slide number the deck's numbering cannot hold is no slide: the current one is read.
    if (const double slide = tlxVal(ctx.arg2); slide > 0 && slide < 32768)
        ctx.currentSlide = short(slide);
    else
        IgnoringErrors([&] { readCurrentSlide(ctx); });
}

int GetPPAPPActiveWindowIndex(RunContext& ctx)
{
    return Guarded(ctx, "Common_PPAPP_Functions", "GetPPAPPActiveWindowIndex", true, 0, [&] {
        ctx.oPres = ctx.oPPT->ActivePresentation();
        for (int i = 1; i <= ctx.oPPT->WindowsCount(); ++i)
            if (ctx.oPPT->Windows(i) == ctx.oPPT->ActiveWindow())
                return i;
        return ctx.oPPT->WindowsCount() > 0 ? 1 : 0;
    });
}

void ProcessTimeLog(RunContext& ctx, const QString& label)
{
    const double now = ctx.clock->secondsSinceMidnight();
    if (tlxVal(label) == 1 || ctx.processTimeFirst == 0) {
        ctx.processTimeFirst = now;
        ctx.processTimeLast = now;
    }
    ctx.processTimeLog += label + "," + QString::number(now - ctx.processTimeLast) + "," +
                          QString::number(now - ctx.processTimeFirst) + "\r\n";
    ctx.processTimeLast = now;
}

bool SlideHasVotes(RunContext& ctx)
{
    bool has = false;
    IgnoringErrors([&] { has = !SlideAt(ctx, ctx.currentSlide)->GetTags()->Item("TLXVOTES").isEmpty(); });
    return has;
}

void CheckStillOnSlide(RunContext& ctx)
{
    bool leave = false;
    IgnoringErrors([&] {
        if (ctx.makeMode && !showRunning(ctx))
            return;
        // A presenter who has moved off the question slide stops the run.
        leave = showRunning(ctx) && showSlide(ctx) != ctx.currentSlide;
    });
    if (leave)
        FullShutDown(ctx);
}

void RecordPPTSlideObjectNames(RunContext& ctx, host::Slide* slide)
{
    const qint64 t0 = ctx.clock->perfCounter();
    ctx.slideShapeNames.clear();
    host::Shapes* shapes = slide->GetShapes();
    for (int i = 1; i <= shapes->Count(); ++i)
        ctx.slideShapeNames << shapes->Item(i)->Name();
    WriteDebugLog(ctx, since(ctx, t0), "Total Function Time", kModule, "RecordPPTSlideObjectNames");
}

void RemoveObjectsAutomaticallyAddedByPPT(RunContext& ctx, host::Slide* slide)
{
    if (ctx.slideShapeNames.isEmpty())
        return;
    IgnoringErrors([&] {
        host::Shapes* shapes = slide->GetShapes();
        for (int i = shapes->Count(); i >= 1; --i) {
            host::Shape* shape = shapes->Item(i);
            const QString name = shape->Name();
            // Our own shapes stay whatever their name's case: a chart placed in this run
            // was not on the slide when it began.
            if (name.left(3).toUpper() == "TLX" || host::IsOwnShapeName(name) || ctx.slideShapeNames.contains(name))
                continue;
            WriteDebugLog(ctx, 0, name + " [DELETED]", kModule, "RemoveObjectsAutomaticallyAddedByPPT");
            shape->Delete();
        }
    });
}

void TerminateAndRunMacro(RunContext& ctx, const QString& reason)
{
    if (ctx.forms)
        for (const QString& form : ctx.forms->LoadedForms())
            ctx.forms->Unload(form);
    RecordVoteEnd(ctx, reason);
    IgnoringErrors([&] { ctx.oPPT->Run(reason); });
    if (ctx.CommitPresentation)
        ctx.CommitPresentation();
    if (ctx.terminator)
        ctx.terminator(0);
}

void Main(RunContext& ctx)
{
    ctx.perfFrequency = ctx.clock->perfFrequency();
    ctx.ShowErrors = true;
    const bool finished = Guarded(ctx, kModule, "Main", true, false, [&] {
        ctx.voteRunning = true;
        ReadGlobalSettingsFromINIFile(ctx);
        log(ctx, "*** BEING VOTE APP***");
        ctx.localDecimal = Get_localDecimal();

        // Step 4: the arrays at their least; with no presentation host there is nothing to do.
        ctx.votes.redim(0);
        ctx.groupFilter.redim(0);
        ctx.optionCounts.redim(0);
        if (!ctx.oPPT)
            return true;

        RecordPPTHandles(ctx);
        GetPPAPPActiveWindowIndex(ctx);
        ctx.participants.erase();
        log(ctx, "PPT Object Pointers Set");

        if (ctx.arg5 != "ALL")
            SplitLaunchString(ctx, ctx.commandLine);
        log(ctx, "args Read: arg1=" + ctx.arg1 + " arg2=" + ctx.arg2 + " arg3=" + ctx.arg3 + " arg4=" + ctx.arg4 +
                     " arg5=" + ctx.arg5);

        if (ctx.arg1 == "MAKE") {
            ctx.arg1 = debugAction(ctx.dialogs->InputBox("Action? - tlxvote (v), tlxgroup (g), tlxreshow (r)",
                                                         "Debug mode", "v"));
            if (ctx.arg1 == "TLXGROUP")
                ctx.arg3 = QString::number(qint64(tlxVal(ctx.dialogs->InputBox("Which group - 1-9", "Debug mode", "999"))));
            ctx.arg2 = ctx.dialogs->InputBox("Enter Slide number", "Debug mode", QString::number(readCurrentSlide(ctx)))
                           .toUpper();
            if (ctx.arg2 == "ALL") {
                ctx.arg5 = "ALL";
                ctx.arg2 = "1";
            }
            if (ctx.arg1 != "TLXGROUP" && !showRunning(ctx))
                ctx.oPres->RunSlideShow();
            if (showRunning(ctx) && tlxVal(ctx.arg2) != showSlide(ctx)) {
                ctx.oPPT->SlideShowWindows(1)->GetView()->GotoSlide(int(tlxVal(ctx.arg2)));
                readCurrentSlide(ctx);
            }
            const QString keep5 = ctx.arg5;
            SplitLaunchString(ctx, ctx.arg1 + "," + ctx.arg2);
            ctx.arg5 = keep5.isEmpty() ? QStringLiteral("MAKE") : keep5;
        }

        if (ctx.arg2 == "ALL" || ctx.arg5 == "ALL") {
            // The slide being altered must not be the one on screen.
            IgnoringErrors([&] {
                host::View* view = ctx.oPPT->ActiveWindow()->GetView();
                if (view->GetSlide()->SlideIndex() == 1 && ctx.oPres->GetSlides()->Count() > 1)
                    view->GotoSlide(2);
            });
            ctx.arg5 = "ALL";
            ctx.arg3 = "999";
            if (tlxVal(ctx.arg4) == 0)
                ctx.arg4 = "1";
            ctx.arg2 = ctx.arg4;
            log(ctx, "Moved slide to avoid insert flashing");
        }

        ctx.addInPath = ctx.oPPT->AddInPath("tallix") + "/";
        if (ctx.arg3 == "999")
            ctx.makeMode = true;
        if (ctx.arg1 == "TLXGROUP" && !showRunning(ctx) && ctx.arg3 != "999") {
            FullShutDown(ctx);
            return true;
        }
        if (ctx.arg1 == "TLXRESHOW") {
            log(ctx, "Reshow started");
            DisplayReshow(ctx);
            // A reshow's result is its slide with every chart on it: nothing waits.
            FullShutDown(ctx);
            return true;
        }

        log(ctx, "Check vCast");
        if (ctx.arg5 == "ALL" && ctx.forms) {
            if (!ctx.forms->IsLoaded(FormName::vCast))
                ctx.forms->Load(FormName::vCast);
            if (ctx.vCast)
                ctx.vCast->ShowAllRunProgress(ctx.oPres->GetSlides()->Count());
            log(ctx, "vCast Loaded");
        }
        if (!ctx.makeMode && ctx.forms) {
            if (!ctx.forms->IsLoaded(FormName::comms))
                ctx.forms->Load(FormName::comms);
            if (ctx.comms)
                ctx.comms->chk_WaitingForData = 1;
            ProcessTimeLog(ctx, "Load Comms");
        }
        CheckStillOnSlide(ctx);
        RecordPPTSlideObjectNames(ctx, SlideAt(ctx, ctx.currentSlide));

        closeFormerInstance(ctx);

        IgnoringErrors([&] { ctx.oPres->GetTags()->Delete("tlxVoteTerminated"); });
        if (!ctx.makeMode && ctx.forms && ctx.forms->IsLoaded(FormName::vCast))
            ctx.forms->Unload(FormName::vCast);

        ctx.notVotedPopupAt = 0;
        ctx.notVotedShowCount = 20;
        ctx.firstKeypad = 1;
        ctx.autoEndByPercent = 0;
        ctx.GrowSpeed = 1;
        ctx.controllerVoteType = "9";
        LoadDefaultXML(ctx);
        LoadDefaultColours(ctx, -1);
        ResetSeriesColours(ctx);
        CheckStillOnSlide(ctx);
        ProcessTimeLog(ctx, "ChkPPTSlideNo6");

        const QString settings = SlideAt(ctx, ctx.currentSlide)->GetTags()->Item("TLXVOTE");
        if (settings.isEmpty()) {
            log(ctx, "Unable to load vote info");
            RecordVoteEnd(ctx, "Unable to load vote info");
            FullShutDown(ctx);
            return true;
        }
        SettingsDocument& doc = settingsDocOf(ctx);
        if (!doc.loadXML(settings)) {
            ctx.dialogs->MsgBox(QString::number(doc.parseError().errorCode) + "\r\n" + doc.parseError().reason +
                                    "\r\nError loading vote information\r\nvote error",
                                MsgBoxStyle::Critical, QString());
            RecordVoteEnd(ctx, "Unable to load vote info");
            FullShutDown(ctx);
            return true;
        }
        SetVarsFromXML(ctx);

        // In an ALL pass the slide only now takes the new arg2: the steps above worked on
        // the slide of the pass before, an order that is kept.
        const qint64 t0 = ctx.clock->perfCounter();
        readCurrentSlide(ctx);
        hideShapesNamed(ctx, "tallix chart");
        log(ctx, "Hide charts", since(ctx, t0));
        if (ctx.FixedFree == 1) {
            hideShapesNamed(ctx, "tlx_answers");
            log(ctx, "Hide results");
        }
        if (ctx.GraphType == 7)
            deleteRatingShapes(ctx);
        if (ctx.GraphType == 6)
            prepareObjectVote(ctx);

        CheckStillOnSlide(ctx);
        if (!ctx.makeMode && ctx.comms) {
            ctx.comms->VoteLoaded();
            const qint64 t1 = ctx.clock->perfCounter();
            // Dressing the votes-cast window is its first use, which loads it.
            if (ctx.forms && !ctx.forms->IsLoaded(FormName::vCast))
                ctx.forms->Load(FormName::vCast);
            LoadVotesCastBoxes(ctx);
            log(ctx, "Votes Cast Boxes Loaded", since(ctx, t1));
            const qint64 t2 = ctx.clock->perfCounter();
            ctx.comms->SendCommandToController("GetVoteInfo");
            log(ctx, "comms.SendCommandToController('GetVoteInfo')", since(ctx, t2));
        }

        ctx.settingsReady = true;
        if (ctx.PPTColourScheme)
            SetColoursFromPPT(ctx);
        ProcessTimeLog(ctx, "PPTColour");
        ReadActiveKeypads(ctx);
        if (ctx.allowAbstain && ctx.comms)
            ctx.comms->SendCommandToController("ABSTAIN=" + CStrBool(ctx.allowAbstain));

        if (ctx.oPPT->CommandBarItemChecked("Menu Bar|&Quilmark|&Voting Results|Vote history dialog box") &&
            ctx.arg5 != "nocheck" && SlideHasVotes(ctx)) {
            execRevote(ctx, 0, 0);
            if (ReadVoteEnd(ctx) != "doVote") {
                FullShutDown(ctx);
                return true;
            }
        }

        AllocArrays(ctx);
        if (!ctx.makeMode)
            PrepareVotesCastWindow(ctx);
        ProcessTimeLog(ctx, "UpdateVotesCast");
        if (!SlideAt(ctx, ctx.currentSlide)->GetTags()->Item("JoltVoice").isEmpty() && ctx.forms)
            ctx.forms->Unload(FormName::vCast);

        short restart = 0;
        execVote(ctx, restart);
        ProcessTimeLog(ctx, "RunVote");
        return true;
    });
    if (!finished)
        EndProcessAfterFailure(ctx);
}

} // namespace tallix
