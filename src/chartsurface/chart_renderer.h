#pragma once
// Lays out and draws a chart model into any QPainter: a window, an image, a picture
// recording. Each draw also records what later code asks of a drawn chart: mark positions,
// point positions, pie radii, annotation bounds and the axes' bounds.

#include "chartsurface/chart_model.h"

#include <QFont>
#include <QPainter>

namespace tallix {

class ChartRenderer {
public:
    static void Draw(TChartModel& model, QPainter& painter, const QRect& rect);

    // The value axis keeps its present bounds until thawed (used while a series grows).
    static void FreezeValueAxis(TChartModel& model);
    static void ThawValueAxis(TChartModel& model);

    // The font a chart font asks for, in pixels at 96 per inch; DejaVu Sans stands in for
    // a family that is not installed.
    static QFont MakeFont(const TFont& font, double scale = 1.0);
    // Text in a symbol font that is not installed, mapped to the same symbols in Unicode.
    static QString MapSymbolText(const TFont& font, const QString& text);
};

} // namespace tallix
