#pragma once
// The votes-cast window on screen: a small borderless, always-on-top panel over the
// show. All behaviour lives in vCastForm; this class draws and forwards input.
//
// A form may be unloaded from inside its own key or click handler (a revote, the
// process end): the form manager must delete the window later (deleteLater), never
// inside the handler.

#include "livewindow/vcast.h"
#include "livewindow/votes_cast_view.h"

#include <QPixmap>
#include <QWidget>

#include <memory>
#include <vector>

namespace tallix {

struct RunContext;

class VotesCastWindow final : public QWidget, public VotesCastView {
public:
    explicit VotesCastWindow(RunContext& ctx, QWidget* parent = nullptr);
    ~VotesCastWindow() override;

    vCastForm& form() { return *form_; }

    // VotesCastView
    void setCounter(const QString& caption, int fontSize) override;
    void setCounterVisible(bool on) override;
    int counterTextWidth(const QString& caption, int fontSize) const override;
    void setCaption(const QString& text, int fontSize) override;
    int captionTextWidth(const QString& text, int fontSize) const override;
    void setCaptionVisible(bool on) override;
    void setBar(int widthTwips, bool visible) override;
    void setProgress(int maximum, int value, bool visible) override;
    int indicatorCount() const override { return int(indicators_.size()); }
    qint32 indicatorColour(int index) const override;
    void setIndicatorColour(int index, qint32 bgr) override;
    void setIndicatorVisible(int index, bool on) override;
    void setIndicatorsTop(int twips) override { indicatorsTop_ = twips / 15; update(); }
    void setPausedVisible(bool on) override { paused_ = on; update(); }
    void setBusy(bool on) override;
    void setKeypadText(const QString& text) override { keypadText_ = text; update(); }
    bool applySkin(const QString& file) override;
    WindowRect windowRect() const override;
    void setWindowRect(const WindowRect& r) override;
    void showWindow() override;
    void hideWindow() override { hide(); }
    bool isWindowVisible() const override { return isVisible(); }
    void setOpacity(double level) override { setWindowOpacity(level); }
    void raiseAndFocus() override;

    // How many base indicators the window carries (one per base in use).
    void setIndicatorCount(int n);

protected:
    void paintEvent(QPaintEvent*) override;
    void keyPressEvent(QKeyEvent* e) override;
    void mousePressEvent(QMouseEvent*) override;

private:
    struct Indicator {
        qint32 colour = 0x00C000;
        bool visible = false;
    };
    QFont counterFont(int size) const;
    QFont captionFont(int size) const;

    RunContext& ctx_;
    std::unique_ptr<vCastForm> form_;
    std::unique_ptr<IntervalTimer> busyTimer_;
    QString counter_;
    int counterSize_ = 12;
    bool counterVisible_ = true;
    QString caption_;
    int captionSize_ = 12;
    bool captionVisible_ = true;
    int barTwips_ = 0;
    bool barVisible_ = false;
    int progressMax_ = 0;
    int progressValue_ = 0;
    bool progressVisible_ = false;
    std::vector<Indicator> indicators_;
    int indicatorsTop_ = 65;
    bool paused_ = false;
    bool busy_ = false;
    int busyPhase_ = 0;
    QString keypadText_;
    QPixmap skin_;
};

// Maps a key event to the codes Form_KeyDown takes (letters upper case, VK numbering)
// and the shift mask (1 shift, 2 ctrl, 4 alt); 0 for keys the window ignores.
int KeyDownCode(int qtKey);
int ShiftMask(Qt::KeyboardModifiers m);

} // namespace tallix
