#pragma once
// `vCast`: the votes-cast window's behaviour — its six timers, the count-down display,
// the operator's keys and clicks. Draws nothing itself: it drives a VotesCastView.

#include "vote/forms.h"

#include <array>
#include <memory>

namespace tallix {

class IntervalTimer;
class VotesCastView;
struct RunContext;

// Key codes as the window system reports them to Form_KeyDown.
namespace KeyCode {
constexpr int Backspace = 8;
constexpr int Enter = 13;
constexpr int Escape = 27;
constexpr int PageUp = 33;
constexpr int PageDown = 34;
constexpr int Left = 37;
constexpr int Up = 38;
constexpr int Right = 39;
constexpr int Down = 40;
constexpr int F1 = 112;
constexpr int ShiftAlt = 4;
} // namespace KeyCode

class vCastForm final : public VotesCastForm {
public:
    vCastForm(RunContext& ctx, VotesCastView& view);
    ~vCastForm() override;

    void Form_Load();
    void Form_Unload();

    // VotesCastForm
    void ShowBaseErrorMessage(short base, const QString& message) override;
    int BaseIndicatorCount() const override;
    qint32 BaseIndicatorColour(int index) const override;
    void SetBaseIndicatorColour(int index, qint32 colour) override;
    void ShowBaseIndicator(int index) override;
    void LogBaseResponded(short base) override;
    void SetCounterLabel(const QString& caption, int fontSize) override;
    QString CounterCaption() const override { return label1_; }
    QString Tag() const override { return tag_; }
    void SetTag(const QString& t) override { tag_ = t; }
    void VoteClosed() override;
    void KeyInput(int key) override;
    void RunRevote() override;
    bool IsVisible() const override;
    void BringToFront() override;
    void DisableRevoteTimers() override;
    void StartKeypadsNotVotedCheck() override;
    void SetProgressValue(int value) override;
    void ShowAllRunProgress(int slides) override;
    void SetCaptionText(const QString& text) override;
    bool ApplySkin(const QString& file) override;
    void SetLabelFontSizes(int counter, int caption) override;
    void PlaceOverShow(float topFraction, float leftFraction) override;
    void SetPausedVisible(bool on) override;
    void EnablePauseTimer(bool on) override;
    void StartCountDown(bool clockRunning) override;
    void SetBarShown(bool on) override;
    void SetKeypadText(const QString& text) override;
    void ShowLabels() override;
    void SetOpacity(double level) override;
    void SetCaption(const QString& text, int fontSize) override;
    void ClearCountDown() override;
    int IterationCounter() const override { return iterationCounter; }
    void SetIterationCounter(int n) override { iterationCounter = n; }
    void ResetKeyboardKeypad() override;
    bool TextScrollRunning() const override;
    void StartTextScroll() override;

    // Events of the window.
    void Form_KeyPress(int keyAscii);
    void Form_KeyDown(int keyCode, int shift);
    void Form_Click();
    void Label1_Change();
    void lbl_vCastText_Change();
    void StartSound(bool play);
    void StopSound();

    // Timer bodies, public so the window and tests can name them.
    void tmr_cDownTimer_Timer();
    void tmr_cDownPause_Timer();
    void tmr_baseStatusMonitor_Timer();
    void Tmr_AppOpen_Timer();
    void tmr_checkKeypadsNotVotedPopUp_Timer();
    void tmr_JolttextScroll_Timer();

    IntervalTimer& tmr_cDownTimer() { return *tmrCDown_; }
    IntervalTimer& tmr_cDownPause() { return *tmrCDownPause_; }
    IntervalTimer& tmr_baseStatusMonitor() { return *tmrBaseStatus_; }
    IntervalTimer& Tmr_AppOpen() { return *tmrAppOpen_; }
    IntervalTimer& tmr_JolttextScroll() { return *tmrJoltScroll_; }
    IntervalTimer& tmr_checkKeypadsNotVotedPopUp() { return *tmrNotVotedCheck_; }

    // Window state, readable by tests.
    qint32 nextKeyboardKeypad = 0;
    int iterationCounter = 0;   // selections of a series done
    std::array<double, 100> lastHeard{};
    bool barActive = false;
    double countdownStart = 0;
    bool countdownRunning = false;
    qint32 soundLeadMs = 0;
    QString lastStatus;
    bool inClick = false;
    bool clickArmed = false;
    qint32 lastKeyTime = 0;
    short lastKeyCode = 0;
    bool keyVoteBusy = false;
    int barWidth() const { return barWidth_; }
    int counterFontSize() const { return label1Size_; }
    int progressValue() const { return progressValue_; }

    // The count-down's display value: a second shows as long as any part of it is left.
    static int DisplaySeconds(double remaining);
    // Label1's font size in a skinned window, by the window's width in twips.
    static int SkinFontSizeForWidth(int widthTwips);

private:
    void SendStatus();
    void UpdateBar();
    int BarWidthNow() const;
    bool CountsDown() const;
    bool KeyboardBase() const;
    void SimulatedVote(int key);
    void RandomVotes();
    void OfferKeyboardVoting();
    void ToggleKeypadsNotVoted();
    void PauseOrResume();
    void stopClock();

    RunContext& ctx_;
    VotesCastView& view_;
    std::unique_ptr<IntervalTimer> tmrCDown_, tmrCDownPause_, tmrBaseStatus_, tmrAppOpen_, tmrJoltScroll_,
        tmrNotVotedCheck_;
    QString label1_;
    int label1Size_ = 12;
    QString caption_;
    int captionSize_ = 12;
    QString tag_;
    int barWidth_ = 0;
    bool tickBusy_ = false;
    int progressValue_ = 0;
    int progressMax_ = 0;
    bool progressShown_ = false;
    bool skinned_ = false;
};

} // namespace tallix
