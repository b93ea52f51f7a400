#include "vote_driver.h"

#include "charts/chart_procedures.h"
#include "controller/comms.h"
#include "controller/scalepad_votes.h"
#include "foundation/clock.h"
#include "foundation/dialogs.h"
#include "foundation/error_report.h"
#include "foundation/event_pump.h"
#include "foundation/host.h"
#include "foundation/logs.h"
#include "foundation/numbers.h"
#include "livewindow/keypads_not_voted.h"
#include "question/slide_objects.h"
#include "results/common_io.h"
#include "results/load_votes.h"
#include "vote/forms.h"
#include "vote/graph_runners.h"
#include "charts/rank_markers.h"
#include "vote/rating_runners.h"
#include "vote/run_context.h"
#include "vote/series_runners.h"
#include "vote/text_runners.h"
#include "vote/vote_close.h"
#include "vote/votes_cast_boxes.h"

namespace tallix {

namespace {

const char* const kModule = "Vote";
const QString kTitle = QStringLiteral("tallix");

void send(RunContext& ctx, const QString& text)
{
    if (ctx.comms)
        ctx.comms->SendCommandToController(text);
}

int message(RunContext& ctx, const QString& text, int flags, const QString& title = kTitle)
{
    return ctx.dialogs->MsgBox(text, flags, title);
}

bool isGraph(short g)
{
    return (g >= 0 && g <= 5) || (g >= 9 && g <= 14);
}

// The group path: the answers of an earlier slide become a filter of keypads, and the
// result is drawn as if the operator had ended the vote with Esc. False when the
// group source does not have its two parts and the vote goes on as an ordinary one.
bool groupPath(RunContext& ctx)
{
    host::Tags* presTags = ctx.oPres->GetTags();
    const QString defaultGroup = presTags->Item("tlx_DefaultGroup");
    if (defaultGroup.isEmpty() && !ctx.makeMode) {
        message(ctx, "No default group defined", MsgBoxStyle::Information);
        FullShutDown(ctx);
        return true;
    }
    const QStringList source = ctx.makeMode
                                   ? (QString::number(SlideAt(ctx, ctx.currentSlide)->SlideID()) + ",1").split(',')
                                   : defaultGroup.split("\r\n");
    if (source.size() != 2)
        return false;
    const int groupSlide = ctx.oPres->GetSlides()->FindBySlideID(long(tlxVal(source[0])))->SlideIndex();
    if (ctx.arg5 != "MAKE" && groupSlide >= ctx.currentSlide && !ctx.makeMode) {
        message(ctx, "Default group slide must be before the current slide", MsgBoxStyle::Critical);
        FullShutDown(ctx);
        return true;
    }
    const QString saved = SlideAt(ctx, groupSlide)->GetTags()->Item("TLXVOTES");
    if (saved.isEmpty()) {
        if (ctx.arg5 != "ALL")
            message(ctx,
                    ctx.makeMode ? "No results on slide " + QString::number(groupSlide)
                                 : QStringLiteral("No votes on the default group slide"),
                    MsgBoxStyle::Information);
        FullShutDown(ctx);
        return true;
    }
    // The group slide's current result: its last finished line.
    const QString list = LastFinishedVoteList(saved);
    if (list.isEmpty()) {
        FullShutDown(ctx);
        return true;
    }
    const QStringList byKeypad = list.split(';');
    ctx.groupFilter.redim(byKeypad.size() - 1);
    bool any = false;
    for (int i = 0; i < byKeypad.size(); ++i) {
        short in = 1;
        if (ctx.arg3 != "999")
            in = byKeypad[i] == "-" ? 0 : (tlxVal(byKeypad[i]) == tlxVal(ctx.arg3) ? 1 : 0);
        ctx.groupFilter(i) = in;
        any = any || in == 1;
    }
    // Nobody in the group: no filter at all, and the result shows every keypad.
    if (!any)
        ctx.groupFilter.redim(0);
    AllocArrays(ctx);
    if (ctx.GraphType == 7)
        ScalepadSetup(ctx);
    if (ctx.PriorMultiVote == 4)
        ctx.controllerVoteType = "6";
    // The result comes as if the operator had ended a vote with Esc. Making charts loads no
    // votes-cast window of its own, so one is loaded, unseen, to take the key.
    if (!ctx.vCast && ctx.forms) {
        ctx.forms->Load(FormName::vCast);
        if (ctx.vCast)
            ctx.vCast->SetOpacity(0);
    }
    if (ctx.vCast)
        ctx.vCast->KeyInput(27);
    return true;
}

// A series whose number of selections was lost or never set would open nothing and
// still place an empty result: it does not run.
bool refuseSeriesWithoutSelections(RunContext& ctx)
{
    if (ctx.Iterations >= 1)
        return false;
    message(ctx,
            "This series vote has no selections to make. Set the number of selections (Iterations) of the "
            "question to 1 or more.",
            MsgBoxStyle::Information);
    RecordVoteEnd(ctx, "Vote finished");
    FullShutDown(ctx);
    return true;
}

// A rating vote of no items would open nothing and still save and place an empty result.
bool refuseRatingWithoutItems(RunContext& ctx)
{
    if (ctx.NumberRankVotes >= 1)
        return false;
    message(ctx,
            "This rating vote has no items to rate. Set the number of items (NumberRankVotes) of the question to "
            "1 or more.",
            MsgBoxStyle::Information);
    RecordVoteEnd(ctx, "Vote finished");
    FullShutDown(ctx);
    return true;
}

void refuseKeypads(RunContext& ctx)
{
    if (ctx.vCast)
        ctx.vCast->SetOpacity(0);
    const bool mixed = ctx.BaseType.contains("m7") && ctx.BaseType.contains("GrandHub");
    message(ctx,
            mixed ? QStringLiteral("You need to ONLY have Scalepad keypads to use this vote type")
                  : QStringLiteral("You need Scalepad keypads to use this vote type"),
            MsgBoxStyle::Information, QStringLiteral("tallix vote"));
    FullShutDown(ctx);
}

void runGraph(RunContext& ctx)
{
    if (ctx.vType == 1)
        DoCountDownGraphVote(ctx);
    else
        DoCountUpGraphVote(ctx);
}

void sendAnswers(RunContext& ctx)
{
    host::Slide* slide = SlideAt(ctx, ctx.currentSlide);
    if (host::Shape* answers = ShapeNamed(slide, "tlx_answers"); answers && answers->HasTextFrame()) {
        host::TextFrame* frame = answers->GetTextFrame();
        const int n = frame->ParagraphCount();
        QStringList numbered;
        for (int i = 1; i <= n; ++i)
            numbered << QString::number(i) + ". " + frame->Paragraph(i);
        if (n != ctx.optionCount && n > 1 && n < 12 && ctx.GraphType != 7 && ctx.vType != 6) {
            ctx.optionCount = short(n);
            ctx.voteOptions.redimPreserve(ctx.optionCount);
        }
        QString text = numbered.join('|');
        text.remove("\r\n").remove('\r').remove('\n');
        send(ctx, "AnswerText=" + text);
    }
    if (host::Shape* q = ShapeNamed(slide, "tlx_kpadquestion"); q && q->HasTextFrame())
        send(ctx, "QuestionTextShort=" + q->GetTextFrame()->Text());
}

void dispatch(RunContext& ctx)
{
    const short g = ctx.GraphType;
    const short v = ctx.vType;
    if (isGraph(g)) {
        switch (v) {
        case 0:
        case 3: DoCountUpGraphVote(ctx); break;
        case 1: DoCountDownGraphVote(ctx); break;
        case 2:
            if (!refuseSeriesWithoutSelections(ctx))
                DoSeriesGraphVote(ctx);
            break;
        case 4: doCountUpDynamic(ctx); break;
        default: break;
        }
    } else if (g == 6 || g == 8) {
        switch (v) {
        case 0: DoCountUpTextVote(ctx, 0); break;
        case 1: DoCountDownTextVote(ctx, 0); break;
        case 2:
            if (!refuseSeriesWithoutSelections(ctx))
                DoSeriesTextVote(ctx);
            break;
        case 3:
            // One question after the other: on a base each opens and returns at once.
            for (qint32 i = 0; i < ctx.NumberTextVotes; ++i)
                DoCountUpTextVote(ctx, i);
            RecordVoteEnd(ctx, "Vote finished");
            FullShutDown(ctx);
            break;
        default: break;
        }
    } else if (g == 7) {
        if (refuseRatingWithoutItems(ctx))
            return;
        ctx.internalRestart = false;
        ctx.ratingVoteOpen = true;
        if (!ctx.vCast) {
            if (ctx.forms)
                ctx.forms->Load(FormName::vCast);
            LoadVotesCastBoxes(ctx);
            PrepareVotesCastWindow(ctx);
        }
        const short item = ctx.rankItemIndex;
        if (v == 0 && !ctx.ratingVoteStarted)
            DoCountUpRankVote(ctx, item);
        else if (v == 1 && !ctx.ratingVoteStarted)
            DoCountDownRankVote(ctx, item);
        // A runner on a base returns with its item still open, its marker still wanted.
        if ((v == 0 || v == 1) && ctx.voteEnded == 1)
            hideCurrentRankIndicator(ctx, item);
    }
}

} // namespace

QString KeypadDisplayText(const RunContext& ctx)
{
    const int topOption = ctx.optionCount + ctx.startFrom - 1;
    QString text = ctx.Quilmark_Display != 0
                       ? "    Vote Now||      A-" + QString(QChar(ctx.optionCount + 64))
                       : "    Vote Now||      " + QString::number(ctx.startFrom) + "-" + QString::number(topOption);
    if (ctx.allowAbstain)
        text += "||   0: Abstain";
    return text;
}

void execVote(RunContext& ctx, short& /*restart*/)
{
    const bool finished = Guarded(ctx, kModule, "execVote", ctx.ShowErrors, false, [&] {
        WriteDebugLog(ctx, 0, "*** EXECUTE VOTE ROUTINE START ***", kModule, "execVote");
        ctx.votesCast = 0;
        ctx.voteCancelled = (ctx.arg1 == "TLXGROUP" || ctx.arg1 == "TLXRESHOW") ? 1 : 0;

        if (ctx.vType == 1 && ctx.GraphType != 7 && ctx.vCast) {
            ctx.vCast->SetTag(QString::number(ctx.TimeLeft));
            ctx.vCast->SetCounterLabel(QString::number(ctx.TimeLeft), 0);
            if (ctx.CountDownManualStart) {
                ctx.vCast->SetCounterLabel(QString(), 18);
                ctx.vCast->SetPausedVisible(true);
            } else {
                ctx.vCast->StartCountDown(true);
            }
        }

        if (ctx.arg1 == "TLXGROUP" && groupPath(ctx))
            return true;

        send(ctx, "options=" + QString::number(ctx.optionCount));
        send(ctx, "StartFrom=" + QString::number(ctx.startFrom));

        if (ctx.BaseType.isEmpty() && ctx.comms) {
            ctx.comms->ReadPortInfo();
            ctx.commsWaitStart = float(ctx.clock->secondsSinceMidnight());
            while (ctx.comms->chk_WaitingForData == 0 && ctx.BaseType.isEmpty() &&
                   ctx.clock->secondsSinceMidnight() - ctx.commsWaitStart < 5.0) {
                ctx.pump->WaitForEvents(10);
                WriteDebugLog(ctx, 0,
                              "Waiting: comms.chk_WaitingForData = " + QString::number(ctx.comms->chk_WaitingForData) +
                                  " And Len(BaseType) = " + QString::number(ctx.BaseType.size()),
                              kModule, "execVote");
            }
        }

        bool canScalepad = ctx.BaseType.contains("GrandHub", Qt::CaseInsensitive);
        ctx.controllerVoteType = "9";
        send(ctx, "VoteType=9");
        if (ctx.BaseType.contains("m7"))
            canScalepad = false;
        if (ctx.BaseType.contains("KBOARD"))
            canScalepad = true;
        if ((ctx.vType == 2 || ctx.GraphType == 7) && ctx.PriorMultiVote == 0)
            canScalepad = false;
        short scalepadItems = 0;
        if (canScalepad)
            scalepadItems = ScalepadSetup(ctx);

        if (ctx.FixedFree == 1 && ctx.FractionalJoltTEXT >= 1) {
            if (!canScalepad) {
                refuseKeypads(ctx);
                return true;
            }
            StartJolttextVote(ctx);
            return true;
        }
        const int topOption = ctx.optionCount + ctx.startFrom - 1;
        if (topOption >= 12 && ctx.GraphType != 7) {
            if (!canScalepad) {
                refuseKeypads(ctx);
                return true;
            }
            ctx.controllerVoteType = "99";
            send(ctx, "VoteType=99");
            send(ctx, "limits=9");
            send(ctx, "CPPOptions=1");
            runGraph(ctx);
        }
        if (ctx.FixedFree == 1 && ctx.FractionalJoltTEXT == 0) {
            if (!canScalepad) {
                refuseKeypads(ctx);
                return true;
            }
            ctx.controllerVoteType = ctx.NumberSigFigs < 1 ? "11" : "99";
            ctx.Limits = 9;
            send(ctx, "VoteType=" + ctx.controllerVoteType);
            send(ctx, "CPPOptions=1");
            send(ctx, "Limits=9");
            runGraph(ctx);
        }
        if (ctx.Iterations >= 1 && canScalepad && scalepadItems != 0) {
            if (ctx.vCast) {
                ctx.vCast->SetCounterLabel(ctx.VotesCastLabel == "[DEFAULT]" ? QStringLiteral("Votes Cast")
                                                                             : ctx.VotesCastLabel,
                                           0);
                ctx.vCast->PlaceOverShow(ctx.vCastTop, ctx.vCastLeft);
            }
            ctx.seriesVotes.redim(ctx.Iterations, ctx.keypadUniverse);
            for (int it = 0; it < ctx.Iterations; ++it)
                for (int k = 0; k < ctx.keypadUniverse; ++k)
                    ctx.seriesVotes(it, k) = -1;
            for (int k = 0; k < ctx.keypadUniverse && k <= ctx.votes.ubound(); ++k)
                ctx.votes(k) = "-1";
            RefreshKeypadsNotVoted(ctx, false);
            ctx.voteEnded = 0;
            static const char* const byStyle[] = {"9", nullptr, "3", "5", "6", "1"};
            const short style = ctx.PriorMultiVote;
            QString type = QStringLiteral("3");
            if (style == 1)
                type = topOption >= 10 ? "12" : "99";
            else if (style >= 0 && style <= 5)
                type = byStyle[style];
            ctx.controllerVoteType = type;
            send(ctx, "Limits=" + QString::number(ctx.Iterations));
            send(ctx, "VoteType=" + type);
            // The controller was told one thing; the replies are read as a list, on purpose.
            if (type == "12" || (type == "99" && style == 1))
                ctx.controllerVoteType = "3";
            DoCountUpGraphVote(ctx);
        }
        if (ctx.controllerVoteType != "9")
            return true;

        if (ctx.vCast)
            ctx.vCast->ShowLabels();
        ctx.keypadDisplayText = KeypadDisplayText(ctx);
        sendAnswers(ctx);
        send(ctx, "VoteText=" + ctx.keypadDisplayText);
        if (ctx.GraphType == 7)
            GrabBackground(ctx, "vCast");
        dispatch(ctx);
        return true;
    });
    if (!finished)
        EndProcessAfterFailure(ctx);
}

} // namespace tallix
