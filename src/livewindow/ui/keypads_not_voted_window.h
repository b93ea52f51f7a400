#pragma once
// The keypads-not-voted list: a small topmost panel under the votes-cast window that
// names the keypads still to vote, redrawn four times a second.

#include "livewindow/keypads_not_voted.h"
#include "vote/forms.h"
#include "vote/run_state.h"

#include <QWidget>

#include <memory>

namespace tallix {

class IntervalTimer;
struct RunContext;

class KeypadsNotVotedWindow final : public QWidget, public KeypadsNotVotedForm {
public:
    // `under`: the votes-cast window's rectangle, which the list centres under.
    KeypadsNotVotedWindow(RunContext& ctx, const WindowRect& under, QWidget* parent = nullptr);
    ~KeypadsNotVotedWindow() override;

    QString ListCaption() const override { return text_; }
    bool FadingIn() const override { return windowOpacity() < 1.0; }
    void BringToFrontOpaque() override;
    void SetOpacity(double level) override { setWindowOpacity(level); }
    void showNotVoted() override;

protected:
    void paintEvent(QPaintEvent*) override;

private:
    void Timer1_Timer();

    RunContext& ctx_;
    std::unique_ptr<IntervalTimer> timer1_;
    NotVotedListState state_;
    QString text_;
    bool redrawing_ = false;
};

// `formHelp`: the operator's keys, closed with Escape.
class HelpWindow final : public QWidget {
public:
    explicit HelpWindow(QWidget* parent = nullptr);
    static QStringList Lines();

protected:
    void keyPressEvent(QKeyEvent* e) override;
};

} // namespace tallix
