#pragma once
// What the votes-cast logic asks of the drawn window. The Qt window implements it;
// tests use a fake, so the timers and keys run without a display.

#include "vote/run_state.h"

#include <QString>

namespace tallix {

class VotesCastView {
public:
    virtual ~VotesCastView() = default;
    // `Label1`, the number.
    virtual void setCounter(const QString& caption, int fontSize) = 0;
    virtual void setCounterVisible(bool on) = 0;
    // Width in pixels the counter's text takes at that size.
    virtual int counterTextWidth(const QString& caption, int fontSize) const = 0;
    // `lbl_vCastText`, the text under it.
    virtual void setCaption(const QString& text, int fontSize) = 0;
    virtual int captionTextWidth(const QString& text, int fontSize) const = 0;
    virtual void setCaptionVisible(bool on) = 0;
    // The progress bar, 0 to 1800 twips wide.
    virtual void setBar(int widthTwips, bool visible) = 0;
    // `PBar`: the progress of an ALL run, drawn over the whole window.
    virtual void setProgress(int maximum, int value, bool visible) = 0;
    virtual int indicatorCount() const = 0;
    virtual qint32 indicatorColour(int index) const = 0;
    virtual void setIndicatorColour(int index, qint32 bgr) = 0;
    virtual void setIndicatorVisible(int index, bool on) = 0;
    virtual void setIndicatorsTop(int twips) = 0;
    virtual void setPausedVisible(bool on) = 0;
    virtual void setBusy(bool on) = 0;
    virtual void setKeypadText(const QString& text) = 0;
    // False when the picture cannot be read; the window then keeps its plain look.
    virtual bool applySkin(const QString& file) = 0;
    virtual WindowRect windowRect() const = 0;
    virtual void setWindowRect(const WindowRect& r) = 0;
    virtual void showWindow() = 0;
    virtual void hideWindow() = 0;
    virtual bool isWindowVisible() const = 0;
    virtual void setOpacity(double level) = 0;
    virtual void raiseAndFocus() = 0;
};

} // namespace tallix
