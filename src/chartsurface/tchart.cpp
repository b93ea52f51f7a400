#include "chartsurface/tchart.h"

#include "chartsurface/chart_renderer.h"

#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>

namespace tallix {

TChart::TChart(QWidget* parent, int index) : QWidget(parent), Index(index)
{
    setFocusPolicy(Qt::StrongFocus);
    setMouseTracking(true);
    setAttribute(Qt::WA_OpaquePaintEvent, false);
    legendTextHook = [this](int legendIndex, QString& text) { emit OnGetLegendText(Index, legendIndex, text); };
}

void TChart::Move(int left, int top, int widthTwips, int heightTwips)
{
    setGeometry(left / kTwipsPerPixel, top / kTwipsPerPixel, std::max(0, widthTwips / kTwipsPerPixel),
                std::max(0, heightTwips / kTwipsPerPixel));
}

QSize TChart::drawSize() const
{
    const QSize s = size();
    return s.isEmpty() ? TChartModel::drawSize() : s;
}

void TChart::Repaint()
{
    // A chart on view paints through the window system; one off view (built for export, or
    // hidden while it is set up) still lays itself out, so positions are real either way.
    if (isVisible() && !size().isEmpty())
        repaint();
    else
        renderHeadless();
}

void TChart::afterDraw() { emit OnAfterDraw(Index); }

void TChart::paintEvent(QPaintEvent*)
{
    {
        QPainter p(this);
        ChartRenderer::Draw(*this, p, rect());
    }
    emit OnAfterDraw(Index);
}

int TChart::KeyCodeFor(int k)
{
    if (k >= Qt::Key_A && k <= Qt::Key_Z)
        return 'A' + (k - Qt::Key_A);
    if (k >= Qt::Key_0 && k <= Qt::Key_9)
        return '0' + (k - Qt::Key_0);
    if (k >= Qt::Key_F1 && k <= Qt::Key_F24)
        return 112 + (k - Qt::Key_F1);
    switch (k) {
    case Qt::Key_Backspace: return 8;
    case Qt::Key_Tab: return 9;
    case Qt::Key_Return:
    case Qt::Key_Enter: return 13;
    case Qt::Key_Shift: return 16;
    case Qt::Key_Control: return 17;
    case Qt::Key_Alt: return 18;
    case Qt::Key_Escape: return 27;
    case Qt::Key_Space: return 32;
    case Qt::Key_PageUp: return 33;
    case Qt::Key_PageDown: return 34;
    case Qt::Key_End: return 35;
    case Qt::Key_Home: return 36;
    case Qt::Key_Left: return 37;
    case Qt::Key_Up: return 38;
    case Qt::Key_Right: return 39;
    case Qt::Key_Down: return 40;
    case Qt::Key_Insert: return 45;
    case Qt::Key_Delete: return 46;
    default: return k & 0xFFFF;
    }
}

int TChart::ShiftStateFor(Qt::KeyboardModifiers mods)
{
    int s = 0;
    if (mods & Qt::ShiftModifier)
        s |= 1;
    if (mods & Qt::ControlModifier)
        s |= 2;
    if (mods & Qt::AltModifier)
        s |= 4;
    return s;
}

void TChart::keyPressEvent(QKeyEvent* e)
{
    emit OnKeyDown(Index, KeyCodeFor(e->key()), ShiftStateFor(e->modifiers()));
}

void TChart::mousePressEvent(QMouseEvent* e)
{
    int button = 0;
    if (e->button() == Qt::LeftButton)
        button = 1;
    else if (e->button() == Qt::RightButton)
        button = 2;
    else if (e->button() == Qt::MiddleButton)
        button = 4;
    const QPoint pos = e->position().toPoint();
    emit OnMouseDown(Index, button, ShiftStateFor(e->modifiers()), pos.x(), pos.y());
}

void TChart::mouseMoveEvent(QMouseEvent* e)
{
    const QPoint pos = e->position().toPoint();
    emit OnMouseMove(Index, ShiftStateFor(e->modifiers()), pos.x(), pos.y());
}

} // namespace tallix
