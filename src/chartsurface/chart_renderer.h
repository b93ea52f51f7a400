#pragma once
// Lays out and draws a chart model into any QPainter: a window, an image, a picture
// recording. Each draw also records what later code asks of a drawn chart: mark positions,
// point positions, pie radii, annotation bounds and the axes' bounds.

#include "chartsurface/chart_model.h"

#include <QFont>
#include <QPainter>

#include <vector>

namespace tallix {

// One word of a word cloud as laid out: the point it shows, its ink box (with a small margin),
// where its baseline starts, and its font and colour.
struct WordPlacement {
    int point = -1;
    QString text;
    QFont font;
    QColor colour;
    QRectF box;
    QPointF baseline;
};

class ChartRenderer {
public:
    static void Draw(TChartModel& model, QPainter& painter, const QRect& rect);

    // The value axis keeps its present bounds until thawed (used while a series grows).
    static void FreezeValueAxis(TChartModel& model);
    static void ThawValueAxis(TChartModel& model);

    // Where a word cloud series puts its words inside plot, largest count first; a word that
    // cannot be placed even at the smallest size is left out.
    static std::vector<WordPlacement> LayoutWordCloud(const TSeries& series, const QRectF& plot);

    // The font a chart font asks for, in pixels at 96 per inch; DejaVu Sans stands in for
    // a family that is not installed.
    static QFont MakeFont(const TFont& font, double scale = 1.0);
    // Text in a symbol font that is not installed, mapped to the same symbols in Unicode.
    static QString MapSymbolText(const TFont& font, const QString& text);
};

} // namespace tallix
