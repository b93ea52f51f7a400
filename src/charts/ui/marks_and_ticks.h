#pragma once
// The finishing touches of a chart that already has its points: marks of neighbouring
// series kept apart, the correct answer singled out by a tick or a colour, and the title
// with the filter a reshow applied.

#include "charts/chart_titles.h"

#include <QString>
#include <QtGlobal>

namespace tallix {

struct RunContext;
class FrmTChart;
class TChart;

// Singles out the correct options on TChart(0): a tick glyph beside each, or its point in
// the tick colour, by CorrectAnswerStyle. Sets the form's tickShown.
void DisplayTick(RunContext& ctx, FrmTChart& form);

// Moves apart the marks of neighbouring series at each of the first `pointCount` points of
// TChart(0), once the chart is on view. One series has no pairs: it is only repainted.
void CheckOverlapMarks(RunContext& ctx, FrmTChart& form, short& pointCount);


// The header of `chart`: `filterTitle` as its first line (unless "NULL"), no frame, and with
// seven or more "|" fields in `titleSpec` its font: size|name|bold|italic|underline|colour|shadow.
void SetChartTitle(RunContext& ctx, TChart& chart, const QString& titleSpec, const QString& filterTitle);

} // namespace tallix
