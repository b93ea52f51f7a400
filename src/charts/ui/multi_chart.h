#pragma once
// The result of a series vote, three ways at once on the result window: element 0 the
// totals of every selection, element 1 the selections side by side, and from element 2 one
// small chart per selection. `DisplayBy` picks the one on view; "S" cycles through them.

#include <QList>
#include <QtGlobal>

namespace tallix {

struct RunContext;
class FrmTChart;

struct MultiChartArgs {
    short sample = 0;
    short filterSet = 0;
    short rebuild = 0;
    short hidden = 0;
    short fast = 0;
};

// What the elements are scaled by, from the collated `seriesCounts`.
struct SelectionTotals {
    QList<float> iterationTotals; // per selection, the sum of its counts
    qint32 highestCount = 0;      // the highest single count, rounded
};
SelectionTotals TotalSelections(const RunContext& ctx);

// The value of option `option` on element `element`; `selection` names the series of
// element 1 and is ignored elsewhere.
double MultiChartPointValue(const RunContext& ctx, const SelectionTotals& totals, int element, int selection,
                            int option);

void DisplayMultiChart(RunContext& ctx, FrmTChart& form, short& displayBy, short& iterations, MultiChartArgs& a);

} // namespace tallix
