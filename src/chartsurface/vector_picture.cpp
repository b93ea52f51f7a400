#include "chartsurface/vector_picture.h"

#include "chartsurface/chart_model.h"
#include "chartsurface/chart_renderer.h"

#include <QPaintDevice>
#include <QPaintEngine>
#include <QPainter>
#include <QPainterPath>
#include <QTextItem>

#include <cmath>

namespace tallix {

int VectorPicture::count(VecPrimitive::Kind k) const
{
    int n = 0;
    for (const auto& i : items)
        n += i.kind == k;
    return n;
}

namespace {

QColor Flatten(QColor c, double opacity)
{
    // The formats have no transparency a viewer honours reliably; blend over white instead.
    const double a = c.alphaF() * opacity;
    return QColor::fromRgbF(float(c.redF() * a + (1 - a)), float(c.greenF() * a + (1 - a)), float(c.blueF() * a + (1 - a)));
}

QColor ColorAt(const QGradientStops& stops, double t)
{
    if (stops.isEmpty())
        return Qt::black;
    if (t <= stops.first().first)
        return stops.first().second;
    for (int i = 1; i < stops.size(); ++i)
        if (t <= stops[i].first) {
            const auto& a = stops[i - 1];
            const auto& b = stops[i];
            const double f = (t - a.first) / std::max(1e-9, b.first - a.first);
            return QColor::fromRgbF(float(a.second.redF() + (b.second.redF() - a.second.redF()) * f),
                                    float(a.second.greenF() + (b.second.greenF() - a.second.greenF()) * f),
                                    float(a.second.blueF() + (b.second.blueF() - a.second.blueF()) * f),
                                    float(a.second.alphaF() + (b.second.alphaF() - a.second.alphaF()) * f));
        }
    return stops.last().second;
}

class RecordingEngine final : public QPaintEngine {
public:
    explicit RecordingEngine(VectorPicture& out) : QPaintEngine(QPaintEngine::AllFeatures), out_(out) {}
    bool begin(QPaintDevice*) override { return true; }
    bool end() override { return true; }
    Type type() const override { return QPaintEngine::User; }

    void updateState(const QPaintEngineState& st) override
    {
        const auto f = st.state();
        if (f & DirtyPen)
            pen_ = st.pen();
        if (f & DirtyBrush)
            brush_ = st.brush();
        if (f & DirtyTransform)
            xf_ = st.transform();
        if (f & DirtyOpacity)
            opacity_ = st.opacity();
    }

    void drawPath(const QPainterPath& path) override
    {
        const QPainterPath dev = xf_.map(path);
        fill(dev);
        stroke(dev);
    }

    void drawPolygon(const QPointF* points, int count, PolygonDrawMode mode) override
    {
        QPolygonF poly;
        for (int i = 0; i < count; ++i)
            poly << points[i];
        QPainterPath path;
        path.addPolygon(poly);
        if (mode != PolylineMode) {
            path.closeSubpath();
            path.setFillRule(mode == WindingMode ? Qt::WindingFill : Qt::OddEvenFill);
            fill(xf_.map(path));
        }
        stroke(xf_.map(path));
    }

    void drawPixmap(const QRectF& r, const QPixmap& pm, const QRectF& sr) override
    {
        drawImage(r, pm.toImage(), sr, Qt::AutoColor);
    }

    void drawImage(const QRectF& r, const QImage& img, const QRectF& sr, Qt::ImageConversionFlags) override
    {
        VecPrimitive p;
        p.kind = VecPrimitive::Image;
        p.image = img.copy(sr.toAlignedRect());
        p.target = xf_.mapRect(r);
        out_.items.push_back(std::move(p));
    }

    void drawTextItem(const QPointF& pos, const QTextItem& ti) override
    {
        const QString text = ti.text();
        if (text.trimmed().isEmpty() || pen_.style() == Qt::NoPen)
            return;
        VecPrimitive p;
        p.kind = VecPrimitive::Text;
        p.text = text;
        p.font = ti.font();
        const double scale = std::sqrt(std::fabs(xf_.determinant()));
        const int px = ti.font().pixelSize() > 0 ? ti.font().pixelSize() : int(std::lround(ti.font().pointSizeF() * 96 / 72));
        p.font.setPixelSize(std::max(1, int(std::lround(px * scale))));
        p.pos = xf_.map(pos);
        p.angle = std::atan2(xf_.m12(), xf_.m11()) * 180.0 / 3.14159265358979323846;
        p.color = Flatten(pen_.color(), opacity_);
        out_.items.push_back(std::move(p));
    }

private:
    void fill(const QPainterPath& dev)
    {
        if (brush_.style() == Qt::NoBrush)
            return;
        const bool winding = dev.fillRule() == Qt::WindingFill;
        if (brush_.style() == Qt::LinearGradientPattern) {
            const auto* g = static_cast<const QLinearGradient*>(brush_.gradient());
            const QTransform bx = brush_.transform() * xf_;
            const QPointF a = bx.map(g->start()), b = bx.map(g->finalStop());
            const QPointF dir = b - a;
            const double len = std::hypot(dir.x(), dir.y());
            if (len > 1e-6) {
                const QPointF n = QPointF(-dir.y(), dir.x()) / len * 1e5;
                constexpr int bands = 16;
                for (int k = 0; k < bands; ++k) {
                    const double t0 = k == 0 ? -50.0 : double(k) / bands;
                    const double t1 = k == bands - 1 ? 50.0 : double(k + 1) / bands;
                    const QPointF p0 = a + dir * t0, p1 = a + dir * t1;
                    QPainterPath strip;
                    strip.addPolygon(QPolygonF({p0 - n, p0 + n, p1 + n, p1 - n}));
                    strip.closeSubpath();
                    const QPainterPath part = dev.intersected(strip);
                    if (part.isEmpty())
                        continue;
                    addFill(part, ColorAt(g->stops(), (double(k) + 0.5) / bands), part.fillRule() == Qt::WindingFill);
                }
                return;
            }
        }
        QColor c = brush_.color();
        if (brush_.style() == Qt::RadialGradientPattern || brush_.style() == Qt::ConicalGradientPattern)
            c = ColorAt(brush_.gradient()->stops(), 0.5);
        else if (brush_.style() != Qt::SolidPattern && brush_.style() != Qt::TexturePattern)
            c = QColor::fromRgbF(float(c.redF() * 0.5 + 0.5), float(c.greenF() * 0.5 + 0.5), float(c.blueF() * 0.5 + 0.5), c.alphaF());
        addFill(dev, c, winding);
    }

    void addFill(const QPainterPath& dev, const QColor& c, bool winding)
    {
        if (c.alphaF() * opacity_ < 0.03)
            return;
        VecPrimitive p;
        p.kind = VecPrimitive::Fill;
        p.color = Flatten(c, opacity_);
        p.winding = winding;
        for (const QPolygonF& poly : dev.toSubpathPolygons())
            if (poly.size() >= 3)
                p.polys.push_back(poly);
        if (!p.polys.empty())
            out_.items.push_back(std::move(p));
    }

    void stroke(const QPainterPath& dev)
    {
        if (pen_.style() == Qt::NoPen || pen_.brush().style() == Qt::NoBrush || pen_.color().alphaF() * opacity_ < 0.03)
            return;
        VecPrimitive p;
        p.kind = VecPrimitive::Stroke;
        p.color = Flatten(pen_.color(), opacity_);
        const double scale = std::sqrt(std::fabs(xf_.determinant()));
        p.width = pen_.isCosmetic() || pen_.widthF() <= 0 ? 1.0 : pen_.widthF() * scale;
        for (const QPolygonF& poly : dev.toSubpathPolygons())
            if (poly.size() >= 2)
                p.polys.push_back(poly);
        if (!p.polys.empty())
            out_.items.push_back(std::move(p));
    }

    VectorPicture& out_;
    QPen pen_;
    QBrush brush_;
    QTransform xf_;
    double opacity_ = 1;
};

class RecordingDevice final : public QPaintDevice {
public:
    RecordingDevice(VectorPicture& out, QSize size) : engine_(out), size_(size) {}
    QPaintEngine* paintEngine() const override { return const_cast<RecordingEngine*>(&engine_); }

protected:
    int metric(PaintDeviceMetric m) const override
    {
        switch (m) {
        case PdmWidth: return size_.width();
        case PdmHeight: return size_.height();
        case PdmWidthMM: return int(size_.width() * 25.4 / 96);
        case PdmHeightMM: return int(size_.height() * 25.4 / 96);
        case PdmNumColors: return 0x7FFFFFFF;
        case PdmDepth: return 32;
        case PdmDpiX:
        case PdmDpiY:
        case PdmPhysicalDpiX:
        case PdmPhysicalDpiY: return 96;
        case PdmDevicePixelRatio: return 1;
        case PdmDevicePixelRatioScaled: return int(QPaintDevice::devicePixelRatioFScale());
        default: return 0;
        }
    }

private:
    RecordingEngine engine_;
    QSize size_;
};

} // namespace

VectorPicture RecordChart(TChartModel& model, QSize target, QSize layoutSize)
{
    VectorPicture pic;
    pic.size = target;
    RecordingDevice dev(pic, target);
    QPainter p(&dev);
    p.scale(double(target.width()) / layoutSize.width(), double(target.height()) / layoutSize.height());
    ChartRenderer::Draw(model, p, QRect(QPoint(0, 0), layoutSize));
    p.end();
    return pic;
}

} // namespace tallix
