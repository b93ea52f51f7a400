#pragma once
// A chart's painting recorded as device-space primitives: filled polygons, polylines, text
// runs and pictures. EMF, WMF and EPS are written from one such recording, so every format
// shows what the same paint path drew. Gradients are recorded as bands of flat colour, since
// none of those formats carries one that every viewer draws.

#include <QColor>
#include <QFont>
#include <QImage>
#include <QPolygonF>
#include <QSize>
#include <QString>

#include <vector>

namespace tallix {

class TChartModel;

struct VecPrimitive {
    enum Kind { Fill, Stroke, Text, Image } kind = Fill;
    QColor color;                 // fill, pen or text colour (opaque)
    std::vector<QPolygonF> polys; // Fill, Stroke
    bool winding = false;         // Fill: non-zero rule, else even-odd
    double width = 1;             // Stroke, pixels
    QString text;                 // Text
    QFont font;                   // Text, pixel size already in device pixels
    QPointF pos;                  // Text: start of the baseline
    double angle = 0;             // Text: degrees, clockwise on screen
    QImage image;                 // Image
    QRectF target;                // Image
};

struct VectorPicture {
    QSize size; // pixels
    std::vector<VecPrimitive> items;
    int count(VecPrimitive::Kind k) const;
};

// Records the chart drawn at layoutSize, scaled to target.
VectorPicture RecordChart(TChartModel& model, QSize target, QSize layoutSize);

QByteArray WriteEmf(const VectorPicture& pic);
QByteArray WriteWmf(const VectorPicture& pic);
QByteArray WriteEps(const VectorPicture& pic);

} // namespace tallix
