#include "votes_cast_window.h"

#include "foundation/clock.h"
#include "vote/run_context.h"

#include <QFontMetrics>
#include <QKeyEvent>
#include <QPainter>
#include <QPainterPath>

namespace tallix {

namespace {
constexpr int kWidth = 220;
constexpr int kHeight = 132;
constexpr int kBarFullTwips = 1800;

QColor fromBgr(qint32 bgr)
{
    return QColor(bgr & 0xFF, (bgr >> 8) & 0xFF, (bgr >> 16) & 0xFF);
}
} // namespace

int KeyDownCode(int k)
{
    if ((k >= Qt::Key_A && k <= Qt::Key_Z) || (k >= Qt::Key_0 && k <= Qt::Key_9))
        return k;   // Qt and the window system share ASCII upper case here
    switch (k) {
    case Qt::Key_Backspace: return KeyCode::Backspace;
    case Qt::Key_Return:
    case Qt::Key_Enter: return KeyCode::Enter;
    case Qt::Key_Escape: return KeyCode::Escape;
    case Qt::Key_Space: return 32;
    case Qt::Key_PageUp: return KeyCode::PageUp;
    case Qt::Key_PageDown: return KeyCode::PageDown;
    case Qt::Key_Left: return KeyCode::Left;
    case Qt::Key_Up: return KeyCode::Up;
    case Qt::Key_Right: return KeyCode::Right;
    case Qt::Key_Down: return KeyCode::Down;
    case Qt::Key_F1: return KeyCode::F1;
    case Qt::Key_Minus: return 189;
    default: return 0;
    }
}

int ShiftMask(Qt::KeyboardModifiers m)
{
    return (m & Qt::ShiftModifier ? 1 : 0) | (m & Qt::ControlModifier ? 2 : 0) | (m & Qt::AltModifier ? 4 : 0);
}

VotesCastWindow::VotesCastWindow(RunContext& ctx, QWidget* parent)
    : QWidget(parent, Qt::FramelessWindowHint | Qt::WindowStaysOnTopHint | Qt::Tool), ctx_(ctx)
{
    setWindowTitle(QStringLiteral("Voting..."));
    setAttribute(Qt::WA_TranslucentBackground);
    setFocusPolicy(Qt::StrongFocus);
    resize(kWidth, kHeight);
    indicators_.resize(4);
    form_ = std::make_unique<vCastForm>(ctx, *this);
    busyTimer_ = ctx.clock->createTimer();
    busyTimer_->setInterval(80);
    busyTimer_->onTick([this] {
        busyPhase_ = (busyPhase_ + 1) % 12;
        update();
    });
}

VotesCastWindow::~VotesCastWindow()
{
    form_->Form_Unload();
}

QFont VotesCastWindow::counterFont(int size) const
{
    QFont f(QStringLiteral("DejaVu Sans"));
    f.setPointSize(std::max(1, size));
    f.setBold(true);
    return f;
}

QFont VotesCastWindow::captionFont(int size) const
{
    QFont f(QStringLiteral("DejaVu Sans"));
    f.setPointSize(std::max(1, size));
    return f;
}

void VotesCastWindow::setCounter(const QString& caption, int fontSize)
{
    counter_ = caption;
    counterSize_ = fontSize;
    update();
}

void VotesCastWindow::setCounterVisible(bool on)
{
    counterVisible_ = on;
    update();
}

int VotesCastWindow::counterTextWidth(const QString& caption, int fontSize) const
{
    return QFontMetrics(counterFont(fontSize)).horizontalAdvance(caption);
}

void VotesCastWindow::setCaption(const QString& text, int fontSize)
{
    caption_ = text;
    captionSize_ = fontSize;
    update();
}

int VotesCastWindow::captionTextWidth(const QString& text, int fontSize) const
{
    return QFontMetrics(captionFont(fontSize)).horizontalAdvance(text);
}

void VotesCastWindow::setCaptionVisible(bool on)
{
    captionVisible_ = on;
    update();
}

void VotesCastWindow::setBar(int widthTwips, bool visible)
{
    barTwips_ = std::clamp(widthTwips, 0, kBarFullTwips);
    barVisible_ = visible;
    update();
}

void VotesCastWindow::setProgress(int maximum, int value, bool visible)
{
    progressMax_ = maximum;
    progressValue_ = value;
    progressVisible_ = visible;
    update();
}

qint32 VotesCastWindow::indicatorColour(int index) const
{
    return index >= 0 && index < indicatorCount() ? indicators_[size_t(index)].colour : 0;
}

void VotesCastWindow::setIndicatorColour(int index, qint32 bgr)
{
    if (index >= 0 && index < indicatorCount())
        indicators_[size_t(index)].colour = bgr;
    update();
}

void VotesCastWindow::setIndicatorVisible(int index, bool on)
{
    if (index >= 0 && index < indicatorCount())
        indicators_[size_t(index)].visible = on;
    update();
}

void VotesCastWindow::setIndicatorCount(int n)
{
    indicators_.resize(size_t(std::clamp(n, 0, 100)));
    update();
}

void VotesCastWindow::setBusy(bool on)
{
    busy_ = on;
    busyTimer_->setEnabled(on);
    update();
}

bool VotesCastWindow::applySkin(const QString& file)
{
    QPixmap p(file);
    if (p.isNull())
        return false;
    skin_ = p;
    resize(p.size());
    update();
    return true;
}

WindowRect VotesCastWindow::windowRect() const
{
    const QRect g = geometry();
    return {g.left(), g.top(), g.left() + g.width(), g.top() + g.height()};
}

void VotesCastWindow::setWindowRect(const WindowRect& r)
{
    setGeometry(r.Left, r.Top, std::max(1, r.width()), std::max(1, r.height()));
}

void VotesCastWindow::showWindow()
{
    show();
    raise();
}

void VotesCastWindow::raiseAndFocus()
{
    raise();
    activateWindow();
    setFocus();
}

void VotesCastWindow::paintEvent(QPaintEvent*)
{
    QPainter p(this);
    p.setRenderHint(QPainter::Antialiasing);
    const QRectF all = rect();
    if (progressVisible_) {
        // The progress of an ALL run fills the whole window and nothing else shows.
        p.fillRect(all, QColor(12, 20, 40));
        QRectF done = all;
        done.setWidth(progressMax_ > 0 ? all.width() * std::clamp(progressValue_, 0, progressMax_) / progressMax_ : 0);
        p.fillRect(done, fromBgr(0xFF0000).lighter(130));
        return;
    }
    QColor text = Qt::white;
    QColor soft(210, 222, 240);
    if (!skin_.isNull()) {
        p.drawPixmap(0, 0, skin_);
        // A skin brings its own colours; text goes dark or light to suit it.
        const QImage img = skin_.toImage();
        const QColor mid = img.pixelColor(img.width() / 2, img.height() / 2);
        if (mid.lightness() > 140) {
            text = QColor(20, 24, 32);
            soft = QColor(40, 48, 64);
        }
    } else {
        QPainterPath path;
        path.addRoundedRect(all.adjusted(1, 1, -1, -1), 12, 12);
        QLinearGradient g(all.topLeft(), all.bottomLeft());
        g.setColorAt(0, QColor(28, 44, 78, 235));
        g.setColorAt(1, QColor(12, 20, 40, 235));
        p.fillPath(path, g);
        p.setPen(QPen(QColor(255, 255, 255, 70), 1.5));
        p.drawPath(path);
    }
    const int w = width();
    const int barMargin = 16;
    if (counterVisible_ && !counter_.isEmpty()) {
        p.setFont(counterFont(counterSize_));
        p.setPen(text);
        p.drawText(QRect(0, 6, w, int(height() * 0.52)), Qt::AlignCenter, counter_);
    }
    if (captionVisible_ && !caption_.isEmpty()) {
        p.setFont(captionFont(captionSize_));
        p.setPen(soft);
        p.drawText(QRect(0, int(height() * 0.52), w, 24), Qt::AlignHCenter | Qt::AlignTop, caption_);
    }
    if (barVisible_) {
        const QRectF track(barMargin, height() - 18, w - 2 * barMargin, 7);
        p.setPen(Qt::NoPen);
        p.setBrush(QColor(255, 255, 255, 50));
        p.drawRoundedRect(track, 3.5, 3.5);
        QRectF fill = track;
        fill.setWidth(track.width() * barTwips_ / kBarFullTwips);
        p.setBrush(fromBgr(0xFF0000).lighter(130));
        if (fill.width() > 0)
            p.drawRoundedRect(fill, 3.5, 3.5);
    }
    int x = 10;
    for (const Indicator& ind : indicators_) {
        if (ind.visible) {
            p.setPen(QPen(QColor(0, 0, 0, 120), 1));
            p.setBrush(fromBgr(ind.colour));
            p.drawEllipse(QPointF(x + 4, 10), 4, 4);
        }
        x += 12;
    }
    if (paused_) {
        p.setPen(Qt::NoPen);
        p.setBrush(QColor(255, 200, 60));
        p.drawRoundedRect(QRectF(w - 26, 8, 5, 14), 1.5, 1.5);
        p.drawRoundedRect(QRectF(w - 18, 8, 5, 14), 1.5, 1.5);
    }
    if (busy_) {
        const QPointF c(w / 2.0, height() / 2.0);
        for (int i = 0; i < 12; ++i) {
            const int age = (busyPhase_ - i + 12) % 12;
            QColor dot = text;
            dot.setAlpha(255 - age * 18);
            p.setBrush(dot);
            p.setPen(Qt::NoPen);
            const double a = i * M_PI / 6;
            p.drawEllipse(c + QPointF(std::cos(a) * 18, std::sin(a) * 18), 3, 3);
        }
    }
}

void VotesCastWindow::keyPressEvent(QKeyEvent* e)
{
    if (e->isAutoRepeat() && ctx_.arg5 != "ALL")
        return;
    const int code = KeyDownCode(e->key());
    const QString text = e->text();
    // KeyDown's drop of a repeated code never swallows the key's own character.
    if (code != 0)
        form_->Form_KeyDown(code, ShiftMask(e->modifiers()));
    if (!text.isEmpty() && text[0].unicode() < 128 && !(e->modifiers() & Qt::AltModifier))
        form_->Form_KeyPress(text[0].unicode());
}

void VotesCastWindow::mousePressEvent(QMouseEvent*)
{
    form_->Form_Click();
}

} // namespace tallix
