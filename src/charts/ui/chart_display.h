#pragma once
// The standard chart of a graph vote on the result window: series, marks, margins,
// paging, sorting, the growing animation and the abstain count.

#include "charts/chart_procedures.h"
#include "chartsurface/chart_model.h"
#include "foundation/error_report.h"

#include <QString>
#include <QtGlobal>

namespace tallix {

struct RunContext;
class FrmTChart;
class TChart;

// A chart routine reports a failed statement under its own name and goes on with the next,
// so a bad setting leaves a partly set chart rather than none.
template <class F>
void ChartStep(RunContext& ctx, const char* procedure, F&& f)
{
    Guarded(ctx, "Common_ChartDisplay", procedure, false, 0, [&] {
        f();
        return 0;
    });
}

void DisplayChart(RunContext& ctx, FrmTChart& form, DisplayChartArgs& a);
void AddData(RunContext& ctx, FrmTChart& form, int chartIndex);
void DynamicAxes(RunContext& ctx, FrmTChart& form, short useFixedMax, qint32 axisCeiling);
void AdjustAxes(RunContext& ctx, FrmTChart& form, int chartIndex, short count);
void SetGradientColour(RunContext& ctx, FrmTChart& form, int chartIndex, int seriesIndex);
void StartAnimation(RunContext& ctx, FrmTChart& form, int chartIndex, int seriesIndex, short fast);

void SetUpLegend(RunContext& ctx, FrmTChart& form, int chartIndex, int legendIndex, bool fromRecord);
// The legend flag of chart 0.
bool LegendShown(const RunContext& ctx);
// What the end of a vote does for the legend: shown and styled from its record when flagged.
void ShowLegend(RunContext& ctx, FrmTChart& form);
// A filter's title as a legend entry: "Staff|^Yes^" reads "Staff or Yes"; none reads "All".
QString FilterLegendText(QString title, bool orJoin);
void AdjustChartFont(TChart& chart, int chartIndex, float factor);
void SetChartDimensions(RunContext& ctx, FrmTChart& form, int chartIndex);
void SetUpAxes(RunContext& ctx, FrmTChart& form, int chartIndex, int dataChart);

// The series setup that the standard chart and the multi-chart share: one series of the
// graph type's class on `chart`, element `c`, with its pens, bar sizes and style; its index.
int AddGraphSeries(RunContext& ctx, TChart& chart, int c, bool rebuild, short graphType);
void SetPanelMargins(RunContext& ctx, TChart& chart);
void ApplyMarksFont(RunContext& ctx, TSeries& s);
// The chart's font, with its shadow, as axis labels and titles wear it.
void ApplyChartFont(RunContext& ctx, TFont& f);
OleColor OptionColour(RunContext& ctx, int index);

bool IsPieKind(short graphType);
bool IsVerticalBar(short graphType);
bool IsHorizontalBar(short graphType);

} // namespace tallix
