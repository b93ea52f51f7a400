#pragma once
// The charts of a rating vote: one small element per item holding that item's average as a
// single bar, and element 0 with the spread of one item's marks.

namespace tallix {

struct RunContext;
class FrmTChart;

// `itemIndex` counts from 1.
void DisplayRatingChart(RunContext& ctx, FrmTChart& form, short itemIndex, short showNow, short sample,
                        short filterSet, short rebuild);
// The spread of item `itemIndex` (from 1) on element 0; 26 brings every item's bar back.
void DisplayRatingDistribution(RunContext& ctx, FrmTChart& form, short itemIndex);
// Every item's bar on view, the best ones in the highlight colour when the question asks.
void ShowRankResultsAll(RunContext& ctx, FrmTChart& form);

} // namespace tallix
