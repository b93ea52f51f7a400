#pragma once
// FrmTChart: the borderless, topmost result window that lies over the show's chart area,
// holds the chart surfaces, takes the presenter's keys and clicks, and puts the chart on
// the slide as a picture.

#include "chartsurface/tchart_array.h"
#include "foundation/clock.h"
#include "vote/forms.h"

#include <QImage>
#include <QStringList>
#include <QWidget>

#include <functional>
#include <memory>

namespace tallix {

struct RunContext;

class FrmTChart : public QWidget, public ResultForm {
    Q_OBJECT
public:
    explicit FrmTChart(RunContext& ctx, QWidget* parent = nullptr);
    ~FrmTChart() override;

    RunContext& ctx;
    TChartArray TChart{this};

    // Animation state shared with the chart code.
    bool animating = false;
    short animatingCounter = 0;
    short animatingStepSize = 0;

    short pendingKey = 0;
    short pendingShift = 0;
    float lastSPress = 0;
    double mouseX = 0, mouseY = 0;
    QStringList shapeNames;
    bool overview = false;
    bool tickShown = false;
    bool distributionLock = false;
    bool preview = false;
    // Pie radii fixed from the first paint, so the growing pie has its final size.
    int pieXRadius = 0, pieYRadius = 0;
    // The show's window rectangle in pixels, as placement and export both use it.
    QRect showRect;
    // The part of the grabbed show picture that lies behind the window.
    QImage formPicture;

    std::unique_ptr<IntervalTimer> tmr_restart, tmr_GotoMainSub, tmrHideCursor, tmrKeepFocus, tmrDynamicChart;
    short keepFocusTicks = 0;
    // A reshow's legend: 0 names each entry from the legend records, else from the filter
    // titles, whose parts are joined by "or" or by "and".
    short reshowLegend = 0;
    QStringList legendFilters;
    bool legendFiltersOr = false;

    void Form_Load();
    void Form_Unload();
    void OnKeyDown(int chartIndex, int keyCode, int shift);
    void OnMouseDown(int chartIndex, int button, int shift, int x, int y);
    void Form_MouseDown(int button);
    void OnMouseMove(int chartIndex, int shift, double x, double y);
    void OnAfterDraw(int chartIndex);
    void OnGetLegendText(int chartIndex, int legendIndex, QString& text);

    // Window alpha 0..255, stepped from `from` to `to`.
    void Fade(int from, int to);
    int Alpha() const { return alpha_; }

    // ResultForm
    void GraphtoSlide(short elements) override;
    short PendingKey() const override { return pendingKey; }
    short PendingShift() const override { return pendingShift; }
    void ClearPendingKey() override { pendingKey = 0, pendingShift = 0; }
    void ExternalRestart() override;
    void ShowMe() override;
    bool IsOnView() const override { return isVisible(); }

    // What tmr_GotoMainSub does after switching itself off: unload this form and run Main.
    std::function<void()> gotoMainSub;
    // Ends the run after the result: a click, or the dispatcher's keys.
    std::function<void()> closeEverything;

protected:
    void keyPressEvent(QKeyEvent* e) override;
    void mousePressEvent(QMouseEvent* e) override;
    void mouseMoveEvent(QMouseEvent* e) override;

private:
    void cycleSeriesView();
    void exportElement(int element, int pageIndex, const QRectF& place, bool forceEmf);
    QRectF placement(int element) const;
    QString lastExportFile_;
    int alpha_ = 255;
    bool mouseSeen_ = false;
};

} // namespace tallix
