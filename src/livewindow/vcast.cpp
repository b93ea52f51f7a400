#include "vcast.h"

#include "charts/chart_procedures.h"
#include "charts/collation.h"
#include "controller/comms.h"
#include "controller/live_text.h"
#include "foundation/clock.h"
#include "foundation/dialogs.h"
#include "foundation/environment.h"
#include "foundation/error_report.h"
#include "foundation/event_pump.h"
#include "foundation/host.h"
#include "foundation/logs.h"
#include "foundation/numbers.h"
#include "livewindow/keypads_not_voted.h"
#include "livewindow/votes_cast_view.h"
#include "livewindow/window_placement.h"
#include "results/common_io.h"
#include "vote/random_votes.h"
#include "vote/run_context.h"
#include "vote/vote_close.h"
#include "charts/rank_markers.h"
#include "vote/rating_runners.h"
#include "vote/vote_main.h"

#include <QFileInfo>

#include <cmath>

namespace tallix {

namespace {
const char* kModule = "vcast";
constexpr int kBarFull = 1800;
constexpr qint32 kBlue = 0xFF0000;
constexpr qint32 kYellow = 0x00FFFF;
constexpr qint32 kOrange = 0x0080FF;
constexpr qint32 kRed = 0x0000FF;
constexpr int kTwipsPerPixel = 15;

bool isNumber(const QString& s)
{
    bool ok = false;
    s.trimmed().toDouble(&ok);
    return ok;
}
} // namespace

vCastForm::vCastForm(RunContext& ctx, VotesCastView& view)
    : ctx_(ctx), view_(view), tmrCDown_(ctx.clock->createTimer()), tmrCDownPause_(ctx.clock->createTimer()),
      tmrBaseStatus_(ctx.clock->createTimer()), tmrAppOpen_(ctx.clock->createTimer()),
      tmrJoltScroll_(ctx.clock->createTimer()), tmrNotVotedCheck_(ctx.clock->createTimer())
{
    tmrCDown_->setInterval(10);
    tmrCDownPause_->setInterval(10);
    tmrBaseStatus_->setInterval(100);
    tmrAppOpen_->setInterval(500);
    tmrNotVotedCheck_->setInterval(500);
    // The live text list scrolls at the question's own pace.
    tmrJoltScroll_->setInterval(std::max(1, int(std::lround(ctx.WLSSpeed * 1000))));
    tmrCDown_->onTick([this] { tmr_cDownTimer_Timer(); });
    tmrCDownPause_->onTick([this] { tmr_cDownPause_Timer(); });
    tmrBaseStatus_->onTick([this] { tmr_baseStatusMonitor_Timer(); });
    tmrAppOpen_->onTick([this] { Tmr_AppOpen_Timer(); });
    tmrNotVotedCheck_->onTick([this] { tmr_checkKeypadsNotVotedPopUp_Timer(); });
    tmrJoltScroll_->onTick([this] { tmr_JolttextScroll_Timer(); });
    tmrBaseStatus_->setEnabled(true);
    tmrAppOpen_->setEnabled(true);
}

vCastForm::~vCastForm() = default;

bool vCastForm::CountsDown() const
{
    return ctx_.vType == 1 || ctx_.SeriesVType == 1;
}

bool vCastForm::KeyboardBase() const
{
    return ctx_.BaseType.toUpper() == "KBOARD";
}

void vCastForm::Form_Load()
{
    Guarded(ctx_, kModule, "Form_Load", true, [&] {
        const double t0 = ctx_.clock->secondsSinceMidnight();
        WriteDebugLog(ctx_, 0, "vCast Load Begin", kModule, "Form_Load");
        WriteDebugLog(ctx_, 0, "clsMedia Set", kModule, "Form_Load");
        nextKeyboardKeypad = ctx_.firstKeypad - 1;
        WriteDebugLog(ctx_, 0, "Presentation Running Check", kModule, "Form_Load");
        if (ctx_.arg5 != "MAKE" && !ctx_.makeMode && ctx_.oPPT && ctx_.oPPT->SlideShowWindowsCount() == 0) {
            RecordVoteEnd(ctx_, "Vote finished");
            ctx_.dialogs->MsgBox("No Slide Show", 0, "tallix");
            FullShutDown(ctx_);
            return;
        }
        const bool laterSeriesStep = ctx_.arg2.contains("Series vote") && tlxVal(ctx_.arg4) > 0;
        if (!laterSeriesStep) {
            barActive = false;
            barWidth_ = 0;
            view_.setBar(0, false);
        } else {
            const double a3 = tlxVal(ctx_.arg3), a4 = tlxVal(ctx_.arg4);
            barWidth_ = (a3 != 0 && a4 != 0) ? int(kBarFull * a3 / a4) : kBarFull;
            view_.setBar(barWidth_, true);
        }
        view_.setIndicatorsTop(CountsDown() && ctx_.ShowVotesIndicator ? 880 : 980);
        if (!ctx_.SoundFile.isEmpty() && !QFileInfo::exists(ctx_.SoundFile))
            ctx_.SoundFile.clear();   // no system media folder to search here
        label1Size_ = 12;
        SetCounterLabel("Please Wait", 12);
        view_.showWindow();
        WriteDebugLog(ctx_, float(ctx_.clock->secondsSinceMidnight() - t0), "vCast Load Ended", kModule,
                      "Form_Load");
    });
}

void vCastForm::Form_Unload()
{
    tmrAppOpen_->setEnabled(false);
    tmrJoltScroll_->setEnabled(false);
    tmrCDown_->setEnabled(false);
    tmrCDownPause_->setEnabled(false);
    tmrBaseStatus_->setEnabled(false);
    tmrNotVotedCheck_->setEnabled(false);
    StopSound();
    view_.setBusy(false);
    if (view_.isWindowVisible())
        view_.setOpacity(1.0);
    ctx_.dialogs->RestorePointer();
}

// --- What the controller side reaches.

void vCastForm::ShowBaseErrorMessage(short, const QString& message)
{
    ctx_.dialogs->MsgBox(message, MsgBoxStyle::Critical, "Base Station Error");
}

int vCastForm::BaseIndicatorCount() const { return view_.indicatorCount(); }
qint32 vCastForm::BaseIndicatorColour(int index) const { return view_.indicatorColour(index); }
void vCastForm::SetBaseIndicatorColour(int index, qint32 colour) { view_.setIndicatorColour(index, colour); }
void vCastForm::ShowBaseIndicator(int index) { view_.setIndicatorVisible(index, true); }

void vCastForm::LogBaseResponded(short base)
{
    if (base >= 0 && base < short(lastHeard.size()))
        lastHeard[size_t(base)] = ctx_.clock->secondsSinceMidnight();
}

void vCastForm::SetCounterLabel(const QString& caption, int fontSize)
{
    label1Size_ = fontSize;
    const bool changed = caption != label1_;
    label1_ = caption;
    view_.setCounter(label1_, label1Size_);
    if (changed)
        Label1_Change();
    SendStatus();
}

void vCastForm::SendStatus()
{
    if (label1_ == lastStatus)
        return;
    if (ctx_.comms)
        ctx_.comms->SendCommandToController("VOTE-STATUS:" + label1_);
    lastStatus = label1_;
}

int vCastForm::SkinFontSizeForWidth(int w)
{
    static const int limits[][2] = {{165, 6}, {195, 8}, {240, 10}, {285, 12}, {330, 14}, {360, 16}, {435, 18}};
    for (const auto& l : limits)
        if (w < l[0])
            return l[1];
    return 24;
}

void vCastForm::Label1_Change()
{
    Guarded(ctx_, kModule, "Label1_Change", false, [&] {
        if (label1_ == "K'Board") {
            if (label1Size_ != 18) {
                view_.setCounterVisible(false);
                label1Size_ = 18;
            }
        } else if (label1_ != "..." && label1_ != "Please Wait") {
            if (label1Size_ != 24) {
                view_.setCounterVisible(false);
                label1Size_ = 24;
            }
            if (!FindFileNoCase(ctx_.app.folder, "vcast.bmp").isEmpty())
                label1Size_ = SkinFontSizeForWidth(view_.windowRect().width() * kTwipsPerPixel);
        }
        const int windowWidth = view_.windowRect().width();
        while (label1Size_ > 1 && 0.9 * windowWidth < view_.counterTextWidth(label1_, label1Size_)) {
            view_.setCounterVisible(false);
            --label1Size_;
        }
        view_.setCounter(label1_, label1Size_);
        ctx_.pump->DoEvents();
        view_.setCounterVisible(true);
        if (!CountsDown() && ctx_.autoEndByPercent == 1 && isNumber(label1_) &&
            tlxVal(label1_) == ctx_.keypadUniverse - ctx_.firstKeypad + 1) {
            // Every keypad has voted.
            if (ctx_.forms && ctx_.forms->IsLoaded(FormName::keypadsNotVoted))
                ctx_.forms->Unload(FormName::keypadsNotVoted);
            ctx_.voteEnded = 1;
        }
    });
}

void vCastForm::lbl_vCastText_Change()
{
    const int windowWidth = view_.windowRect().width();
    while (captionSize_ > 1 && 0.95 * windowWidth < view_.captionTextWidth(caption_, captionSize_))
        --captionSize_;
    view_.setCaption(caption_, captionSize_);
    view_.setCaptionVisible(true);
}

int vCastForm::DisplaySeconds(double remaining)
{
    const double whole = std::floor(remaining);
    return remaining == whole ? int(whole) : int(whole) + 1;
}

int vCastForm::BarWidthNow() const
{
    if (ctx_.keypadUniverse <= ctx_.firstKeypad)
        return 0;
    int count = 0;
    for (qint32 k = ctx_.firstKeypad - 1; k <= ctx_.keypadUniverse - 1; ++k) {
        if (k < 0 || k > ctx_.votes.ubound())
            continue;
        const QString& v = ctx_.votes(k);
        if (!v.isEmpty() && tlxVal(v) >= 0)
            ++count;
    }
    const double denominator = ctx_.activeKeypads.isEmpty() ? double(ctx_.keypadUniverse - ctx_.firstKeypad)
                                                            : double(ctx_.activeKeypads.size());
    return std::min(kBarFull, int(count / denominator * kBarFull));
}

void vCastForm::UpdateBar()
{
    const int w = BarWidthNow();
    if (w != barWidth_) {
        barWidth_ = w;
        view_.setBar(barWidth_, true);
    }
}

void vCastForm::tmr_cDownTimer_Timer()
{
    if (tickBusy_)
        return;
    tickBusy_ = true;
    countdownRunning = true;
    Guarded(ctx_, kModule, "tmr_cDownTimer_Timer", false, [&] {
        const double now = ctx_.clock->secondsSinceMidnight();
        if (countdownStart == 0) {
            countdownStart = now;
            return;
        }
        const double elapsed = now - countdownStart;
        if (soundLeadMs > 0 && (ctx_.TimeLeft - elapsed + 0.6) * 1000 <= soundLeadMs) {
            soundLeadMs = 0;
            StartSound(true);
        }
        const double remaining = ctx_.TimeLeft - elapsed;
        if (remaining <= 0) {
            tag_ = "0";   // the runners' loops end on it
            SetCounterLabel("...", 24);
            if (ctx_.countDownExpired == 0)
                ctx_.countDownExpired = 2;
            tmrCDown_->setEnabled(false);
        } else {
            const QString shown = QString::number(DisplaySeconds(remaining));
            tag_ = shown;
            if (label1_ != shown)
                SetCounterLabel(shown, label1Size_);
        }
        if (barActive)
            UpdateBar();
        if (view_.isWindowVisible())
            view_.raiseAndFocus();
    });
    tickBusy_ = false;
}

void vCastForm::tmr_cDownPause_Timer()
{
    if (tickBusy_ || !barActive)
        return;
    UpdateBar();
}

void vCastForm::tmr_baseStatusMonitor_Timer()
{
    const double now = ctx_.clock->secondsSinceMidnight();
    for (int i = 0; i < view_.indicatorCount() && i < int(lastHeard.size()); ++i) {
        double& heard = lastHeard[size_t(i)];
        if (heard == 0 || heard > now) {
            heard = now;   // never heard, or midnight has passed
            continue;
        }
        const double age = now - heard;
        if (age <= 1)
            continue;
        view_.setIndicatorColour(i, age <= 1.5 ? kYellow : age <= 2 ? kOrange : kRed);
    }
}

void vCastForm::Tmr_AppOpen_Timer()
{
    Guarded(ctx_, kModule, "Tmr_AppOpen_Timer", false, [&] {
        if (ctx_.forms && ctx_.forms->IsLoaded("seriesVotePopup"))
            return;
        const bool make = ctx_.arg5 == "MAKE";
        if (!make && ctx_.oPPT && ctx_.oPPT->SlideShowWindowsCount() == 0) {
            tmrAppOpen_->setEnabled(false);
            RecordVoteEnd(ctx_, "Vote finished");
            FullShutDown(ctx_);
            return;
        }
        if (!make && ctx_.currentSlide >= 1 && ctx_.oPPT && ctx_.oPPT->SlideShowWindowsCount() > 0) {
            host::View* v = ctx_.oPPT->SlideShowWindows(1)->GetView();
            if (v && v->GetSlide() && v->GetSlide()->SlideIndex() != ctx_.currentSlide) {
                v->GotoSlide(ctx_.currentSlide);
                GrabBackground(ctx_, "vCast");
            }
        }
        if (ctx_.FractionalJoltTEXT == 2)
            return;
        if (ctx_.forms && ctx_.forms->IsLoaded(FormName::formHelp)) {
            ctx_.forms->ShowHelp();   // kept over the show and in focus while it is open
            return;
        }
        PlaceOverShow(ctx_.vCastTop, ctx_.vCastLeft);
        if (view_.isWindowVisible())
            view_.raiseAndFocus();
    });
}

void vCastForm::tmr_checkKeypadsNotVotedPopUp_Timer()
{
    tmrNotVotedCheck_->setEnabled(false);
    RefreshKeypadsNotVoted(ctx_, false);
}

void vCastForm::StartSound(bool play)
{
    if (ctx_.SoundFile.isEmpty())
        return;
    // No player is wired in; a count-down still needs to know no lead time is owed.
    if (ctx_.vType == 0 || play)
        WriteDebugLog(ctx_, 0, "Sound: " + ctx_.SoundFile, kModule, "StartSound");
    else
        soundLeadMs = 0;
}

void vCastForm::StopSound() {}

void vCastForm::VoteClosed()
{
    tmrBaseStatus_->setEnabled(false);
    tmrAppOpen_->setEnabled(false);
    StopSound();
    view_.setBusy(true);
    for (int i = 0; i < view_.indicatorCount(); ++i)
        view_.setIndicatorVisible(i, false);
    view_.setCaptionVisible(false);
    view_.setCounterVisible(false);
    view_.setBar(barWidth_, false);
    ctx_.pump->DoEvents();
}

void vCastForm::KeyInput(int key)
{
    Form_KeyPress(key);
    Form_KeyDown(key, 0);
}

void vCastForm::RunRevote()
{
    nextKeyboardKeypad = ctx_.firstKeypad - 1;
    tallix::RunRevote(ctx_);   // unloads this window: nothing of it is touched after
}

bool vCastForm::IsVisible() const { return view_.isWindowVisible(); }
void vCastForm::BringToFront() { view_.raiseAndFocus(); }

void vCastForm::DisableRevoteTimers()
{
    tmrAppOpen_->setEnabled(false);
    tmrCDown_->setEnabled(false);
}

void vCastForm::StartKeypadsNotVotedCheck() { tmrNotVotedCheck_->setEnabled(true); }

void vCastForm::SetCaptionText(const QString& text)
{
    caption_ = text;
    lbl_vCastText_Change();
}

bool vCastForm::ApplySkin(const QString& file)
{
    skinned_ = view_.applySkin(file);
    return skinned_;
}

void vCastForm::SetLabelFontSizes(int counter, int caption)
{
    label1Size_ = counter;
    captionSize_ = caption;
    view_.setCounter(label1_, label1Size_);
    lbl_vCastText_Change();
}

void vCastForm::PlaceOverShow(float topFraction, float leftFraction)
{
    const WindowRect r = AlignWindowToPPTSlideShow(ctx_, view_.windowRect(), AlignByFraction, topFraction,
                                                   leftFraction, -1, -1);
    if (!(r == view_.windowRect()))
        view_.setWindowRect(r);
}

void vCastForm::SetProgressValue(int value)
{
    progressValue_ = value;
    if (progressShown_)
        view_.setProgress(progressMax_, value, true);
}

void vCastForm::ShowAllRunProgress(int slides)
{
    // Loading already shows the window, so only the strip itself says whether it is
    // up: the later passes of the run leave it where it is.
    if (progressShown_)
        return;
    // Placed by its own size first, then made a thin strip half the screen wide.
    WindowRect r = AlignWindowToPPTSlideShow(ctx_, view_.windowRect(), AlignByFraction, 0.5f, 0.25f, -1, -1);
    r.Right = r.Left + Desktop().desktop.width() / 2;
    r.Bottom = r.Top + 200 / 15;
    view_.setWindowRect(r);
    progressMax_ = slides;
    progressValue_ = 1;
    progressShown_ = true;
    view_.setProgress(progressMax_, progressValue_, true);
    view_.showWindow();
}

void vCastForm::SetPausedVisible(bool on) { view_.setPausedVisible(on); }
void vCastForm::EnablePauseTimer(bool on) { tmrCDownPause_->setEnabled(on); }

void vCastForm::StartCountDown(bool clockRunning)
{
    countdownStart = ctx_.clock->secondsSinceMidnight();
    if (clockRunning)
        tmrCDown_->setEnabled(true);
}

void vCastForm::SetBarShown(bool on)
{
    barActive = on;
    view_.setBar(barWidth_, on);
}

void vCastForm::SetKeypadText(const QString& text) { view_.setKeypadText(text); }

void vCastForm::ShowLabels()
{
    view_.setCounterVisible(true);
    view_.setCaptionVisible(true);
}

void vCastForm::SetOpacity(double level) { view_.setOpacity(level); }

void vCastForm::SetCaption(const QString& text, int fontSize)
{
    caption_ = text;
    captionSize_ = fontSize;
    lbl_vCastText_Change();
}

void vCastForm::ResetKeyboardKeypad() { nextKeyboardKeypad = ctx_.firstKeypad - 1; }

bool vCastForm::TextScrollRunning() const { return tmrJoltScroll_->enabled(); }
void vCastForm::StartTextScroll() { tmrJoltScroll_->setEnabled(true); }

void vCastForm::tmr_JolttextScroll_Timer()
{
    tmrJoltScroll_->setInterval(std::max(1, int(std::lround(ctx_.WLSSpeed * 1000))));
    JolttextScrollTick(ctx_);
}

void vCastForm::ClearCountDown()
{
    countdownStart = 0;
    countdownRunning = false;
}

void vCastForm::stopClock()
{
    tmrCDown_->setEnabled(false);
}

// --- The operator's keys.

void vCastForm::Form_KeyPress(int key)
{
    const double now = ctx_.clock->secondsSinceMidnight();
    if (now >= lastKeyTime + 1)
        lastKeyTime = 0;
    if (lastKeyTime != 0)
        return;   // keys are taken at most about once a second
    lastKeyTime = qint32(std::lround(now));
    Guarded(ctx_, kModule, "Form_KeyPress", true, [&] {
        if (key == 13 || key == 32 || key == 'N') {
            Form_Click();
            lastKeyTime = 0;
            return;
        }
        WriteDebugLog(ctx_, 0, "KeyAscii = " + QString::number(key) + " (" + QChar(key) + ")", kModule,
                      "Form_KeyPress");
        if (keyVoteBusy)
            return;
        const bool kboard = KeyboardBase();
        const bool digit = key >= '0' && key <= '9';
        if (key == '-') {
            if (ctx_.voteReceived) {
                RefreshKeypadsNotVoted(ctx_, true);
                short all = 0;
                WriteActiveKeypads(ctx_, all);
                if (ctx_.vType == 2)
                    ctx_.voteEnded = 1;
                else
                    closeVote(ctx_);
            }
        } else if (key == '+' || key == '=') {
            ctx_.respondedKeypads.clear();
            ctx_.activeKeypads.clear();
            short all = -1;
            WriteActiveKeypads(ctx_, all);
        } else if (key == 'K' || key == 'k') {
            ToggleKeypadsNotVoted();
        } else if (key == 'Q' || key == 'q') {
            RecordVoteEnd(ctx_, "Vote finished");
            ctx_.AutoAdvance = false;
            if (ctx_.GraphType == 7)
                hideCurrentRankIndicator(ctx_, ctx_.rankItemIndex);
            FullShutDown(ctx_);
        } else if ((key == 'R' || key == 'r') && ctx_.GraphType != 7) {
            RunRevote();
            return;
        } else if (key == 'r') {
            // The whole rating vote again, from its first item.
            ctx_.rankItemIndex = 0;
            RunRevote();
            return;
        } else if (key == 'R') {
            // Only the current rating item again.
            nextKeyboardKeypad = ctx_.firstKeypad - 1;
            ctx_.votesCast = 0;
            DoCountUpRankVote(ctx_, ctx_.rankItemIndex);
            ctx_.internalRestart = true;
        } else if (key == 'P' || key == 'p') {
            if (ctx_.FixedFree == 1 && ctx_.FractionalJoltTEXT == 1 && ctx_.Joltdisplay == 0)
                PauseOrResume();
        } else if ((digit || key == 'z' || key == 'Z') && kboard) {
            SimulatedVote(key);
        } else if ((key == 'G' || key == 'g') && kboard) {
            RandomVotes();
        } else if ((digit || key == 'g') && !kboard) {
            OfferKeyboardVoting();
            if (KeyboardBase()) {
                if (digit)
                    SimulatedVote(key);
                else
                    RandomVotes();
            }
        }
        lastKeyTime = 0;
    });
}

void vCastForm::SimulatedVote(int key)
{
    if (nextKeyboardKeypad == ctx_.maxKeypads ||
        (ctx_.vType == 4 && nextKeyboardKeypad == ctx_.keypadUniverse + (1 - ctx_.firstKeypad)))
        nextKeyboardKeypad = 0;
    if (nextKeyboardKeypad >= ctx_.maxKeypads || nextKeyboardKeypad >= ctx_.keypadUniverse)
        return;
    if (nextKeyboardKeypad < ctx_.firstKeypad)
        nextKeyboardKeypad = ctx_.firstKeypad - 1;
    if (barActive)
        UpdateBar();
    QString value;
    if (key == 'z' || key == 'Z')
        value = ctx_.allowAbstain ? "-2" : "0";
    else
        value = RandomValue(ctx_, key == '0' ? 10 : key - '0');
    keyVoteBusy = true;
    ctx_.voteReceived = true;
    if (ctx_.comms)
        ctx_.comms->setTxt_data(QString::number(nextKeyboardKeypad + 1) + ";" + value + "\r\n");
    ++nextKeyboardKeypad;
    keyVoteBusy = false;
    RefreshKeypadsNotVoted(ctx_, false);
}

void vCastForm::RandomVotes()
{
    stopClock();
    rndGenerator(ctx_);
    if (ctx_.vType == 4)
        ctx_.liveChartDirty = true;
    if (ctx_.vType == 2) {
        nextKeyboardKeypad = ctx_.firstKeypad - 1;
        ctx_.voteEnded = 1;
        if (ctx_.forms)
            ctx_.forms->Unload(FormName::keypadsNotVoted);
        return;
    }
    ctx_.voteReceived = true;
    lastKeyTime = 0;
    closeVote(ctx_);
}

void vCastForm::OfferKeyboardVoting()
{
    const bool clockWasOn = tmrCDown_->enabled();
    tmrCDown_->setEnabled(false);
    tmrAppOpen_->setEnabled(false);
    ctx_.dialogs->RestorePointer();
    const int answer = ctx_.dialogs->MsgBox(
        "Keyboard voting is not enabled.  \r\nWould you like to activate it for this PowerPoint session?\r\n\r\n"
        "If you wish to make this permanent, \r\nthen please set basetype to keyboard in Keypad Setup",
        MsgBoxStyle::YesNo, "tallix");
    if (answer == MsgBoxResult::Yes) {
        if (ctx_.comms)
            ctx_.comms->EndVote();
        ctx_.BaseType = "KBOARD";
        SendStatus();
        if (ctx_.comms)
            ctx_.comms->SendCommandToController("Kboard");
        ctx_.voteEnded = 0;
    }
    tmrAppOpen_->setEnabled(true);
    tmrCDown_->setEnabled(clockWasOn);
}

void vCastForm::PauseOrResume()
{
    if (!ctx_.comms)
        return;
    Comms& c = *ctx_.comms;
    if (!c.livePaused) {
        c.livePaused = true;
        SetCounterLabel("Paused", 18);
        c.SendCommandToController("PAUSEVOTE");
        return;
    }
    c.livePaused = false;
    for (QString& entry : c.pausedQueue) {
        if (entry.isEmpty())
            continue;
        const QString text = entry;
        entry.clear();
        c.setTxt_data(text);
        if (c.livePaused)
            break;
    }
    if (!c.livePaused) {
        c.pausedQueue.clear();
        c.SendCommandToController("RESUMEVOTE");
        if (!isNumber(label1_))
            SetCounterLabel("Resumed", label1Size_);
    }
}

void vCastForm::ToggleKeypadsNotVoted()
{
    if (!ctx_.forms)
        return;
    KeypadsNotVotedForm* f = ctx_.forms->IsLoaded(FormName::keypadsNotVoted) ? ctx_.forms->keypadsNotVotedForm()
                                                                              : nullptr;
    if (ctx_.forms->IsLoaded(FormName::keypadsNotVoted)) {
        const QString caption = f ? f->ListCaption() : QString();
        const bool withCount =
            isNumber(caption) && tlxVal(caption) <= ctx_.keypadUniverse - ctx_.firstKeypad + 1;
        if (f && (withCount || f->FadingIn())) {
            f->BringToFrontOpaque();
            view_.raiseAndFocus();
        } else {
            if (f)
                f->SetOpacity(0);
            ctx_.forms->Unload(FormName::keypadsNotVoted);
        }
        return;
    }
    ctx_.forms->Load(FormName::keypadsNotVoted);
    view_.raiseAndFocus();
}

void vCastForm::Form_KeyDown(int code, int shift)
{
    if (code == lastKeyCode && ctx_.arg5 != "ALL") {
        lastKeyCode = -1;
        return;   // a held key acts once
    }
    lastKeyCode = short(code);
    Guarded(ctx_, kModule, "Form_KeyDown", true, [&] {
        WriteDebugLog(ctx_, 0, "Keycode = " + QString::number(code) + " (" + QChar(code) + ")", kModule,
                      "Form_KeyDown");
        if (code == KeyCode::F1) {
            if (ctx_.forms)
                ctx_.forms->ShowHelp();
            lastKeyCode = 0;
            return;
        }
        if (code == KeyCode::Escape) {
            if (ctx_.comms)
                ctx_.comms->EndVote();
            ctx_.AutoAdvance = false;
            if (ctx_.forms)
                ctx_.forms->Unload(FormName::keypadsNotVoted);
            if (ctx_.vType != 4 && !ctx_.makeMode) {
                view_.setOpacity(0);
                view_.hideWindow();
            }
            if (SlideHasVotes(ctx_)) {
                if (ctx_.GraphType == 7) {
                    // The saved items are drawn afresh, every one of them.
                    hideCurrentRankIndicator(ctx_, ctx_.rankItemIndex);
                    if (ctx_.forms)
                        ctx_.forms->Unload(FormName::FrmTChart);
                }
                ctx_.voteCancelled = 1;
                execRevote(ctx_, 0, 0);
                FullShutDown(ctx_);
            }
            RecordVoteEnd(ctx_, "Vote finished");
            FullShutDown(ctx_);
            return;
        }
        if (shift == KeyCode::ShiftAlt) {
            if (code == 'K') {
                if (ctx_.comms)
                    ctx_.comms->SendCommandToController("KBOARD-OFF");
                ctx_.BaseType = "HW";
                RunRevote();
            } else if (code == 'Q') {
                TerminateAndRunMacro(ctx_, "InstaQ");
            } else if (code == 'G') {
                TerminateAndRunMacro(ctx_, "instaGraph");
            }
            return;
        }
        switch (code) {
        case KeyCode::Down:
        case KeyCode::Right:
        case KeyCode::PageDown:
            Form_Click();
            break;
        case KeyCode::Left:
        case KeyCode::Up:
        case KeyCode::Backspace:
        case KeyCode::PageUp:
            RecordVoteEnd(ctx_, "Vote finished");
            FullShutDown(ctx_);
            break;
        default:
            break;
        }
    });
}

void vCastForm::Form_Click()
{
    if (inClick) {
        inClick = false;
        return;
    }
    Guarded(ctx_, kModule, "Form_Click", true, [&] {
        if (CountsDown() && !countdownRunning && ctx_.CountDownManualStart) {
            StartSound(false);
            view_.setPausedVisible(false);
            SetCounterLabel(QString::number(ctx_.TimeLeft), label1Size_);
            countdownStart = 0;
            tmrCDown_->setEnabled(true);
            countdownRunning = true;
            return;
        }
        if (!ctx_.voteReceived && ctx_.GraphType != 7 && !clickArmed) {
            clickArmed = true;
            if (ctx_.vType == 4) {
                if (ctx_.forms)
                    ctx_.forms->Unload(FormName::FrmTChart);
                FullShutDown(ctx_);
            }
            return;   // the first click on an empty vote only arms the second
        }
        clickArmed = false;
        stopClock();
        if (ctx_.vType == 2 && ctx_.controllerVoteType == "9") {
            nextKeyboardKeypad = ctx_.firstKeypad - 1;
            ctx_.voteEnded = 1;
            if (ctx_.forms)
                ctx_.forms->Unload(FormName::keypadsNotVoted);
            return;
        }
        closeVote(ctx_);
    });
}

} // namespace tallix
