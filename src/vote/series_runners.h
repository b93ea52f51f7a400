#pragma once
// Series votes: each keypad makes `Iterations` selections in a row, one per opening of the
// vote, each saved as its own line; the result shows the totals, the selections side by
// side, and one small chart per selection.

#include "foundation/vb_array.h"

#include <QString>

namespace tallix {

struct RunContext;

void DoSeriesGraphVote(RunContext& ctx);
void DoSeriesTextVote(RunContext& ctx);
// `n` from 1: dresses the votes-cast window for that selection.
void StartSeriesIteration(RunContext& ctx, short n);
// "1st" to "11th"; empty beyond, as the window has no room for more.
QString SelectionOrdinal(int n);
// The text results of every selection together; false when no selection counted.
bool ShowSeriesTextResults(RunContext& ctx);
// The text results of selection `iteration` (from 0) alone.
bool ShowSeriesTextResultsSplitByIteration(RunContext& ctx, short iteration);
// Series colours from the option colours, or all eleven `colour` when one is given.
void ResetSeriesColours(RunContext& ctx, qint32 colour = -1);
// Per option, the selections of the given rows of `seriesVotes` (all rows for -1).
VbArray<double> TallySeriesSelections(const RunContext& ctx, short iteration);

} // namespace tallix
