#include "comms.h"

#include "controller/controller_link.h"
#include "controller/live_text.h"
#include "foundation/clock.h"
#include "foundation/dialogs.h"
#include "foundation/error_report.h"
#include "foundation/event_pump.h"
#include "foundation/logs.h"
#include "vote/forms.h"
#include "vote/run_context.h"
#include "vote/vote_close.h"

namespace tallix {

namespace {
const char* const kModule = "comms";
constexpr qint32 kRed = 255;
constexpr qint32 kGreenLight = 0xC0FFC0;
constexpr qint32 kGreen = 0x80FF80;
} // namespace

Comms::Comms(RunContext& ctx, ControllerLink& link) : ctx_(ctx), link_(link)
{
    liveTextDisplay = [this](qint32 keypad, const QString& value) { return LiveTextDisplay(ctx_, keypad, value); };
    tmrCloseEverything = ctx.clock->createTimer();
    tmrCloseEverything->setInterval(50);
    tmrCloseEverything->onTick([this] {
        tmrCloseEverything->setEnabled(false);
        for (int i = 0; i < 1001; ++i)
            ctx_.pump->DoEvents();
        FullShutDown(ctx_);
    });
}

Comms::~Comms()
{
    link_.FromTLXCtrl = nullptr;
    link_.FromTLXCtrlBaseError = nullptr;
    link_.FromTLXCtrlBaseFeedback = nullptr;
    link_.FromCtrlFormBaseStationStartVoteCount = nullptr;
    link_.AllowedVotes = nullptr;
}

void Comms::Form_Load()
{
    const qint64 t0 = ctx_.clock->perfCounter();
    link_.FromTLXCtrl = [this](const QString& text) { oTLx_FromTLXCtrl(text); };
    link_.FromTLXCtrlBaseError = [this](short b, const QString& m) { oTLx_FromTLXCtrlBaseError(b, m); };
    link_.FromTLXCtrlBaseFeedback = [this](short b, const QString& t) { oTLx_FromTLXCtrlBaseFeedback(b, t); };
    link_.FromCtrlFormBaseStationStartVoteCount = [this](short n) { oTLx_FromCtrlFormBaseStationStartVoteCount(n); };
    link_.AllowedVotes = [this](const QString& t) { setTxt_allowedVotes(t); };
    setTxt_data(QString());
    WriteDebugLog(ctx_, float(CounterSeconds(ctx_, t0, ctx_.clock->perfCounter())), "Comms.Form_Load 01", kModule,
                  "Form_Load");
    const qint64 t1 = ctx_.clock->perfCounter();
    ReadPortInfo();
    WriteDebugLog(ctx_, float(CounterSeconds(ctx_, t1, ctx_.clock->perfCounter())), "Comms.Form_Load 02", kModule,
                  "Form_Load");
}

void Comms::setTxt_data(const QString& text)
{
    if (text == txt_data_)
        return;
    txt_data_ = text;
    txt_data_Change(ctx_);
}

void Comms::oTLx_FromTLXCtrl(const QString& text)
{
    txt_data_ = txt_data_.isEmpty() ? text : txt_data_ + "\r\n" + text;
    if (changePosted_)
        return;
    changePosted_ = true;
    ctx_.pump->Post([this] {
        changePosted_ = false;
        txt_data_Change(ctx_);
    });
}

void Comms::oTLx_FromTLXCtrlBaseError(short base, const QString& message)
{
    if (!ctx_.vCast)
        return;
    ctx_.vCast->ShowBaseErrorMessage(base, message);
    if (ctx_.ini.showBaseStatusDuringLiveVote && base >= 0 && base < ctx_.vCast->BaseIndicatorCount()) {
        ctx_.vCast->SetBaseIndicatorColour(base, kRed);
        ctx_.vCast->ShowBaseIndicator(base);
    }
}

void Comms::oTLx_FromTLXCtrlBaseFeedback(short base, const QString&)
{
    if (!ctx_.ini.showBaseStatusDuringLiveVote || !ctx_.vCast || base < 0 || base >= ctx_.vCast->BaseIndicatorCount())
        return;
    ctx_.vCast->LogBaseResponded(base);
    // The flip between two greens is the heartbeat a viewer sees.
    const qint32 next = ctx_.vCast->BaseIndicatorColour(base) == kGreenLight ? kGreen : kGreenLight;
    ctx_.vCast->SetBaseIndicatorColour(base, next);
    ctx_.vCast->ShowBaseIndicator(base);
}

void Comms::oTLx_FromCtrlFormBaseStationStartVoteCount(short count)
{
    if (!ctx_.ini.showBaseStatusDuringLiveVote || !ctx_.vCast)
        return;
    for (int i = 0; i < count && i < ctx_.vCast->BaseIndicatorCount(); ++i)
        ctx_.vCast->ShowBaseIndicator(i);
}

void Comms::setTxt_allowedVotes(const QString& text)
{
    if (text == txt_allowedVotes_)
        return;
    txt_allowedVotes_ = text;
    SendCommandToController("PCAOPTIONS=" + text);
}

void Comms::ReadPortInfo()
{
    Guarded(ctx_, kModule, "ReadPortInfo", ctx_.ShowErrors, [&] {
        const qint64 t0 = ctx_.clock->perfCounter();
        chk_WaitingForData = 1;
        ctx_.BaseType.clear();
        SendCommandToController("BaseInfo");
        // Counted from the vote's start, not from the request: before a vote the loop
        // ends at once and the caller's own wait carries the load.
        while (ctx_.clock->secondsSinceMidnight() < double(voteStartTimer) + 8 && chk_WaitingForData == 1)
            ctx_.pump->WaitForEvents(5);
        chk_WaitingForData = 0;
        WriteDebugLog(ctx_, float(CounterSeconds(ctx_, t0, ctx_.clock->perfCounter())), "", kModule, "ReadPortInfo");
    });
}

bool Comms::StartVote()
{
    if (ctx_.makeMode)
        return false;
    bool result = true;
    setTxt_data(QString());
    // Each statement goes on after a failure, as the procedure's own handler has it.
    const auto step = [&](auto&& body) {
        try {
            body();
        } catch (const ProcessExit&) {
            throw;
        } catch (...) {
            const VbError e = AsVbError(std::current_exception());
            ctx_.dialogs->MsgBox(e.description(), MsgBoxStyle::OKOnly, "Comms StartVote Error");
            startVoteFailed = true;
        }
    };
    step([&] { SendCommandToController("options=" + QString::number(ctx_.optionCount)); });
    step([&] { SendCommandToController("StartFrom=" + QString::number(ctx_.startFrom)); });
    step([&] { SendCommandToController("QUILMARKdisplay=" + QString::number(ctx_.Quilmark_Display)); });
    step([&] { SendCommandToController("StartVote"); });
    voteStartTimer = float(ctx_.clock->secondsSinceMidnight());
    if (startVoteFailed)
        result = false;
    return result;
}

void Comms::EndVote()
{
    if (ctx_.makeMode)
        return;
    Guarded(ctx_, kModule, "EndVote", ctx_.ShowErrors, [&] { SendCommandToController("EndVote"); });
    ctx_.voteEnded = 1;
}

void Comms::VoteLoaded()
{
    if (ctx_.makeMode)
        return;
    const qint64 t0 = ctx_.clock->perfCounter();
    Guarded(ctx_, kModule, "VoteLoaded", ctx_.ShowErrors, [&] { link_.NotifyVoteLoaded(); });
    // The timing line keeps the name it always had.
    WriteDebugLog(ctx_, float(CounterSeconds(ctx_, t0, ctx_.clock->perfCounter())), "", kModule, "EndVote");
}

void Comms::SendCommandToController(const QString& text, const QJsonObject& extra)
{
    if (ctx_.makeMode)
        return;
    const qint64 t0 = ctx_.clock->perfCounter();
    if (linkLost) {
        WriteDebugLog(ctx_, float(CounterSeconds(ctx_, t0, ctx_.clock->perfCounter())), "", kModule,
                      "SendCommandToController");
        return;
    }
    try {
        link_.SendCommand(text, extra);
        // A command was a call into the controller's process, during which its own events
        // were delivered: what it has said by now is taken in, as it was then.
        ctx_.pump->DoEvents();
    } catch (const ProcessExit&) {
        throw;
    } catch (...) {
        // A lost controller is fatal for the run; every later send is dropped, the
        // shut-down's own included, so it cannot fail a second time.
        linkLost = true;
        ReportFailure(ctx_, std::current_exception(), kModule, "SendCommandToController", ctx_.ShowErrors);
        FullShutDown(ctx_);
    }
}

} // namespace tallix
