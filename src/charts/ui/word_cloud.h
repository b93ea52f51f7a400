#pragma once
// A free-text vote's word cloud on the result window, laid over the slide's cloud area.

#include <QList>
#include <QRectF>
#include <QStringList>

namespace tallix {

struct RunContext;
class FrmTChart;

// `place` in fractions of the slide. Font sizes and colours come from the question's
// WCFontSize0/1 and WCColour0/1 where it sets them.
void DisplayWordCloud(RunContext& ctx, FrmTChart& form, const QStringList& words, const QList<int>& counts,
                      const QRectF& place);

} // namespace tallix
