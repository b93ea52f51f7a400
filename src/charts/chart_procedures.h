#pragma once
// The chart procedures that draw. Vote logic calls them by these names; the program
// fills `ctx.chartProcedures` with the real charts, and without it each says once in
// the debug log that it is not there and returns.

#include <QList>
#include <QRectF>
#include <QStringList>

namespace tallix {

struct RunContext;

// Flags of DisplayChart, by position as the chart code takes them.
struct DisplayChartArgs {
    short seriesCount = 1;
    short withMultiChart = 0;
    short sample = 0;
    short filterSet = 0;
    short rebuild = 0;
    short keepCounts = 0;
    short hidden = 0;
    short dynamic = 0;
    short fadeIn = 0;
};

class ChartProcedures {
public:
    virtual ~ChartProcedures() = default;
    // On the result window `FrmTChart`, which is loaded first when it is not.
    virtual void DisplayChart(DisplayChartArgs& args) = 0;
    // `filterSet`: the keypad filter is set already and the collation keeps it.
    virtual void DisplayMultiChart(short displayBy, short iterations, bool filterSet) = 0;
    virtual void DisplayTick() = 0;
    // The live chart of a dynamic count-up, redrawn towards the present totals.
    virtual void DrawDynamicChart() = 0;
    // The background grab behind a window: "vCast" or "FrmTChart".
    virtual void GrabBackground(const char* formName) = 0;
    // The legend of the result chart, when the settings flag it.
    virtual void ShowLegend() {}

    // A rating vote: item `itemIndex` (from 1) as one bar of its own, and the spread of
    // its marks; the whole set at the end, the best highlighted.
    virtual void DisplayRatingChart(short /*itemIndex*/, short /*showNow*/, short /*sample*/, short /*filterSet*/,
                                    short /*rebuild*/) {}
    virtual void DisplayRatingDistribution(short /*itemIndex*/) {}
    virtual void ShowRankResultsAll() {}
    // Redraws the result window's elements over the show's picture.
    virtual void RefreshResult() {}
    // The distribution element is hidden before an item's bar is drawn for the slide.
    virtual void HideDistribution() {}
    // A free-text vote's distinct answers sized by their counts, the result window laid over
    // `place` (fractions of the slide).
    virtual void DisplayWordCloud(const QStringList& /*words*/, const QList<int>& /*counts*/, const QRectF& /*place*/) {}
};

void DisplayChart(RunContext& ctx, DisplayChartArgs args);
void DisplayMultiChart(RunContext& ctx, short displayBy, short iterations, bool filterSet);
void DisplayTick(RunContext& ctx);
void DrawDynamicChart(RunContext& ctx);
void GrabBackground(RunContext& ctx, const char* formName);
void ShowLegend(RunContext& ctx);
// FrmTChart.GraphtoSlide; -1 (the runtime's true) exports every element.
void GraphtoSlide(RunContext& ctx, short elements);
void DisplayRatingChart(RunContext& ctx, short itemIndex, short showNow = 1, short sample = 0, short filterSet = 0,
                        short rebuild = 0);
void DisplayRatingDistribution(RunContext& ctx, short itemIndex);
void showRankResultsAll(RunContext& ctx);
void RefreshResult(RunContext& ctx);
void HideRatingDistribution(RunContext& ctx);
void DisplayWordCloud(RunContext& ctx, const QStringList& words, const QList<int>& counts, const QRectF& place);

} // namespace tallix
