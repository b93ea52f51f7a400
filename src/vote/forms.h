#pragma once
// The windows that vote logic reaches. The logic draws nothing: the program fills these
// with real windows, tests with fakes. A form that is not loaded is a null pointer in
// the run context; the form manager loads and unloads them by name.

#include <QString>
#include <QStringList>
#include <QtGlobal>

namespace tallix {

// Names of the forms, as the system's code compares them.
namespace FormName {
inline const QString comms = QStringLiteral("comms");
inline const QString vCast = QStringLiteral("vCast");
inline const QString FrmTChart = QStringLiteral("FrmTChart");
inline const QString keypadsNotVoted = QStringLiteral("keypadsNotVoted");
inline const QString formHelp = QStringLiteral("formHelp");
} // namespace FormName

// Loads and unloads the program's windows by name, in the order they were loaded.
class KeypadsNotVotedForm;

class FormManager {
public:
    virtual ~FormManager() = default;
    virtual bool IsLoaded(const QString& name) const = 0;
    // Makes the form if it is not loaded and sets its pointer in the run context.
    virtual void Load(const QString& name) = 0;
    virtual void Unload(const QString& name) = 0;
    virtual QStringList LoadedForms() const = 0;
    // The keypads-not-voted window while it is loaded.
    virtual KeypadsNotVotedForm* keypadsNotVotedForm() { return nullptr; }
    // `formHelp`, the operator's key list over the show.
    virtual void ShowHelp() {}
    // Every window fades to full transparency (before the show moves on by itself).
    virtual void FadeOutAll() {}
};

// The votes-cast window, as far as vote logic needs it.
class VotesCastForm {
public:
    virtual ~VotesCastForm() = default;
    virtual void ShowBaseErrorMessage(short base, const QString& message) = 0;
    virtual int BaseIndicatorCount() const = 0;
    virtual qint32 BaseIndicatorColour(int index) const = 0;
    virtual void SetBaseIndicatorColour(int index, qint32 colour) = 0;
    virtual void ShowBaseIndicator(int index) = 0;
    virtual void LogBaseResponded(short base) = 0;
    // The counter label `Label1`: its caption and font size.
    virtual void SetCounterLabel(const QString& caption, int fontSize) = 0;

    // --- The live vote: what runners, close and the decoder ask of the window.
    // Defaults do nothing, so a fake need only override what its test looks at.
    virtual QString CounterCaption() const { return {}; }
    // `Tag`: the count-down's time left as text, written by the clock every tick.
    virtual QString Tag() const { return {}; }
    virtual void SetTag(const QString&) {}
    virtual void VoteClosed() {}
    // Passes a key on as if typed: KeyPress, then KeyDown with the same code.
    virtual void KeyInput(int) {}
    virtual void RunRevote() {}
    virtual bool IsVisible() const { return false; }
    virtual void BringToFront() {}
    // Stops `Tmr_AppOpen` and `tmr_cDownTimer` (a revote draws over the slide).
    virtual void DisableRevoteTimers() {}
    // 500 ms later the keypads-not-voted refresh runs again with force off.
    virtual void StartKeypadsNotVotedCheck() {}
    virtual void SetProgressValue(int) {}
    // The window as the progress of an ALL run over `slides` slides, unless it
    // already is.
    virtual void ShowAllRunProgress(int /*slides*/) {}

    // --- Dressing before a vote.
    virtual void SetCaptionText(const QString&) {}
    // Uses the picture as the window's skin; false when it cannot be read.
    virtual bool ApplySkin(const QString&) { return false; }
    virtual void SetLabelFontSizes(int /*counter*/, int /*caption*/) {}
    // Places the window over the show: fractions of the show's picture, topmost.
    virtual void PlaceOverShow(float /*topFraction*/, float /*leftFraction*/) {}
    virtual void SetPausedVisible(bool) {}
    virtual void EnablePauseTimer(bool) {}
    virtual void StartCountDown(bool /*clockRunning*/) {}
    virtual void SetBarShown(bool) {}
    virtual void SetKeypadText(const QString&) {}
    virtual void ShowLabels() {}
    virtual void SetOpacity(double) {}

    // --- A series vote: one selection after the other in the same window.
    // The caption `lbl_vCastText` at a font size of its own.
    virtual void SetCaption(const QString&, int /*fontSize*/) {}
    // Forgets the count-down's start, so the next tick starts a full count.
    virtual void ClearCountDown() {}
    // The counter of selections done, and the keyboard's keypad cursor.
    virtual int IterationCounter() const { return 0; }
    virtual void SetIterationCounter(int) {}
    virtual void ResetKeyboardKeypad() {}

    // --- A free-text vote's scrolling list of answers.
    virtual bool TextScrollRunning() const { return false; }
    virtual void StartTextScroll() {}
};

// The keypads-not-voted window.
class KeypadsNotVotedForm {
public:
    virtual ~KeypadsNotVotedForm() = default;
    virtual QString ListCaption() const = 0;
    virtual bool FadingIn() const = 0;
    virtual void BringToFrontOpaque() = 0;
    virtual void SetOpacity(double) = 0;
    virtual void showNotVoted() = 0;
};

// The result window `FrmTChart`, as far as vote logic needs it.
class ResultForm {
public:
    virtual ~ResultForm() = default;
    // Puts the chart on the question slide; -1 exports every chart element.
    virtual void GraphtoSlide(short elements) = 0;

    // For the after-vote dispatcher: the key that ended the result (0 none yet) and the
    // shift state stored with it (2 = Ctrl), and the restart asked for by another form.
    // Defaults do nothing, so a fake need only override what its test looks at.
    virtual short PendingKey() const { return 0; }
    virtual short PendingShift() const { return 0; }
    virtual void ClearPendingKey() {}
    virtual void ExternalRestart() {}
    // Full opacity and topmost.
    virtual void ShowMe() {}
    virtual bool IsOnView() const { return false; }
};

} // namespace tallix
