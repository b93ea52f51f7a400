#include "keypads_not_voted_window.h"

#include "foundation/clock.h"
#include "livewindow/window_placement.h"
#include "vote/run_context.h"

#include <QFontMetrics>
#include <QKeyEvent>
#include <QLabel>
#include <QPainter>
#include <QPainterPath>
#include <QVBoxLayout>

namespace tallix {

namespace {
QFont listFont()
{
    QFont f(QStringLiteral("DejaVu Sans"));
    f.setPointSize(14);
    f.setBold(true);
    return f;
}
} // namespace

KeypadsNotVotedWindow::KeypadsNotVotedWindow(RunContext& ctx, const WindowRect& under, QWidget* parent)
    : QWidget(parent, Qt::FramelessWindowHint | Qt::WindowStaysOnTopHint | Qt::Tool), ctx_(ctx)
{
    setAttribute(Qt::WA_TranslucentBackground);
    setAttribute(Qt::WA_ShowWithoutActivating);
    resize(under.width() > 0 ? under.width() : 220, 40);
    // Centred under the votes-cast window, kept inside the show's picture.
    WindowRect r{under.Left + (under.width() - width()) / 2, under.Bottom + 50 / 15, 0, 0};
    r.Right = r.Left + width();
    r.Bottom = r.Top + height();
    r = CheckWindowInBoundsOfSlideShow(ctx, r);
    move(r.Left, r.Top);
    timer1_ = ctx.clock->createTimer();
    timer1_->setInterval(250);
    timer1_->onTick([this] { Timer1_Timer(); });
    timer1_->setEnabled(true);
    show();
    showNotVoted();
}

KeypadsNotVotedWindow::~KeypadsNotVotedWindow() = default;

void KeypadsNotVotedWindow::BringToFrontOpaque()
{
    setWindowOpacity(1.0);
    raise();
}

void KeypadsNotVotedWindow::Timer1_Timer()
{
    // A redraw waits out its second pumping; the ticks meanwhile must not pile up.
    if (redrawing_)
        return;
    if (isVisible()) {
        redrawing_ = true;
        showNotVoted();
        redrawing_ = false;
    } else if (ctx_.forms)
        ctx_.forms->Unload(FormName::keypadsNotVoted);
}

void KeypadsNotVotedWindow::showNotVoted()
{
    bool ended = false;
    const QString text = tallix::showNotVoted(ctx_, state_, ended);
    if (ended) {
        hide();
        return;
    }
    text_ = text;
    if (state_.autoSize) {
        const int w = QFontMetrics(listFont()).horizontalAdvance(text_.trimmed()) + 28;
        resize(std::max(w, 60), 40);
    }
    update();
}

void KeypadsNotVotedWindow::paintEvent(QPaintEvent*)
{
    QPainter p(this);
    p.setRenderHint(QPainter::Antialiasing);
    QPainterPath path;
    path.addRoundedRect(QRectF(rect()).adjusted(1, 1, -1, -1), 8, 8);
    p.fillPath(path, QColor(90, 20, 20, 230));
    p.setFont(listFont());
    p.setPen(Qt::white);
    p.drawText(rect(), Qt::AlignCenter, text_.trimmed());
}

QStringList HelpWindow::Lines()
{
    return {
        "'r' = restart a vote",
        "'R' = restart the current rating / sequence ONLY",
        "'space bar' = end this vote, save votes received and display graph",
        "'escape key' = display previous results (if any) or display series vote menu",
        "'q' = quits the current vote and returns to Slide Show at same slide",
        "'k' = toggle display a list of keypads that have not voted",
        "'s' = cycle through sequence votes display (by option / by iteration / summed)",
        "'z(0),1,2,3,4,5,6,7,8,9,0(10)' = simulate votes",
        "'g' = generate random votes",
        "'-' = Reduces the keypad universe to only those which have voted",
        "'ALT+K' = Renable Keypads for voting if you have pressed a number or G",
        "'s,d,f,x' = Put keypads in Sentry, Detect, Fallback, Normal modes DURING voting",
    };
}

HelpWindow::HelpWindow(QWidget* parent) : QWidget(parent, Qt::WindowStaysOnTopHint)
{
    setWindowTitle(QStringLiteral("tallix - Press Escape to close"));
    auto* layout = new QVBoxLayout(this);
    for (const QString& line : Lines()) {
        auto* l = new QLabel(line, this);
        l->setWordWrap(true);
        layout->addWidget(l);
    }
}

void HelpWindow::keyPressEvent(QKeyEvent* e)
{
    if (e->key() == Qt::Key_Escape)
        close();
    else
        QWidget::keyPressEvent(e);
}

} // namespace tallix
