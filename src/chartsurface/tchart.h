#pragma once
// The chart surface as a control: a widget holding a chart model, drawing it, raising the
// surface events with its element index, and exporting it to picture files.

#include "chartsurface/chart_export.h"
#include "chartsurface/chart_model.h"

#include <QWidget>

namespace tallix {

constexpr int kTwipsPerPixel = 15;

class TChart : public QWidget, public TChartModel {
    Q_OBJECT
public:
    explicit TChart(QWidget* parent = nullptr, int index = 0);

    // The element's index in its form's array; every event carries it.
    int Index = 0;

    // Position and size as a form control: in twips.
    int Left() const { return x() * kTwipsPerPixel; }
    int Top() const { return y() * kTwipsPerPixel; }
    int Width() const { return width() * kTwipsPerPixel; }
    int Height() const { return height() * kTwipsPerPixel; }
    void SetLeft(int twips) { move(twips / kTwipsPerPixel, y()); }
    void SetTop(int twips) { move(x(), twips / kTwipsPerPixel); }
    void SetWidth(int twips) { resize(std::max(0, twips / kTwipsPerPixel), height()); }
    void SetHeight(int twips) { resize(width(), std::max(0, twips / kTwipsPerPixel)); }
    void Move(int left, int top, int widthTwips, int heightTwips);
    bool Visible() const { return !isHidden(); }
    void SetVisible(bool on) { setVisible(on); }
    // 0 brings the element in front of its siblings, 1 sends it behind them.
    void ZOrder(int position = 0) { position == 1 ? lower() : raise(); }

    // Draws now, whether on view or not, and raises OnAfterDraw once the drawing is done.
    void Repaint() override;
    QSize drawSize() const override;

    TExport Export{this};

signals:
    void OnAfterDraw(int chartIndex);
    void OnKeyDown(int chartIndex, int keyCode, int shift);
    void OnMouseDown(int chartIndex, int button, int shift, int x, int y);
    void OnMouseMove(int chartIndex, int shift, int x, int y);
    void OnGetLegendText(int chartIndex, int legendIndex, QString& text);

protected:
    void paintEvent(QPaintEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void afterDraw() override;

public:
    // Key code and shift state as the events carry them: virtual key codes (letters as their
    // capitals, Esc 27, Left 37 ...), and shift 1, ctrl 2, alt 4.
    static int KeyCodeFor(int qtKey);
    static int ShiftStateFor(Qt::KeyboardModifiers mods);
};

} // namespace tallix
