#pragma once
// The program's chart procedures: they own the result window FrmTChart, load it on the
// first chart build, and draw into it. InstallChartWindow makes them and hooks them into
// the run context, so vote logic reaches them through `ctx.chartProcedures` and
// `ctx.FrmTChart`.

#include "charts/chart_procedures.h"

#include <memory>

namespace tallix {

struct RunContext;
class FrmTChart;

class ChartWindowProcedures : public ChartProcedures {
public:
    explicit ChartWindowProcedures(RunContext& ctx);
    ~ChartWindowProcedures() override;

    void DisplayChart(DisplayChartArgs& args) override;
    void DisplayMultiChart(short displayBy, short iterations, bool filterSet) override;
    void DisplayTick() override;
    void DrawDynamicChart() override;
    void GrabBackground(const char* formName) override;
    void ShowLegend() override;
    void DisplayRatingChart(short itemIndex, short showNow, short sample, short filterSet, short rebuild) override;
    void DisplayRatingDistribution(short itemIndex) override;
    void ShowRankResultsAll() override;
    void RefreshResult() override;
    void HideDistribution() override;
    void DisplayWordCloud(const QStringList& words, const QList<int>& counts, const QRectF& place) override;

    // The result window, loaded (and placed over the chart area) when it is not.
    FrmTChart& LoadForm();
    void UnloadForm();
    FrmTChart* form() const { return form_.get(); }

private:
    RunContext& ctx_;
    std::unique_ptr<FrmTChart> form_;
};

// Makes the chart procedures and sets `ctx.chartProcedures`; the window itself is made on
// the first DisplayChart, which sets `ctx.FrmTChart`. Keep the result alive for the run.
std::unique_ptr<ChartWindowProcedures> InstallChartWindow(RunContext& ctx);

} // namespace tallix
