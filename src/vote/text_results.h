#pragma once
// The result of a text vote is text on the slide: each option's count or percent goes into
// the last cell of row 1 of the table in the shape "tlx_object" + n, which stands beside it.

#include "foundation/vb_array.h"

#include <QString>

namespace tallix {

struct RunContext;

// One cell's text by `showAsPercentOrNumber`: 0 the percent, 1 the count, 2 "(count) percent",
// 3 nothing. The percent is of `total`, with `PercentDP` places in the machine's decimal mark.
QString TextResultCell(RunContext& ctx, double count, double total);

// Writes `counts(i)` for options 1..`optionCount` and shows each table. With
// `textResultsIteration` set, the tables are those inside the group "tallix iteration " + n
// of that selection. A missing shape or table is skipped with a log line; the rest are written.
void WriteTextResults(RunContext& ctx, const VbArray<double>& counts, double total);

} // namespace tallix
