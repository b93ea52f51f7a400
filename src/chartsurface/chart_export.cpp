#include "chartsurface/chart_export.h"

#include "chartsurface/chart_model.h"
#include "chartsurface/chart_renderer.h"
#include "chartsurface/raster_writers.h"
#include "chartsurface/vector_picture.h"
#include "foundation/safe_write.h"
#include "foundation/vb_error.h"

#include <QBuffer>
#include <QImageWriter>
#include <QPainter>
#include <QSvgGenerator>

namespace tallix {

namespace {

QImage Render(TChartModel& chart, QSize target, QSize layout, bool keepAlpha)
{
    QImage img(target, QImage::Format_ARGB32_Premultiplied);
    // Formats without transparency get white where the panel has no colour.
    img.fill(keepAlpha ? QColor(Qt::transparent) : QColor(Qt::white));
    QPainter p(&img);
    p.scale(double(target.width()) / layout.width(), double(target.height()) / layout.height());
    ChartRenderer::Draw(chart, p, QRect(QPoint(0, 0), layout));
    p.end();
    return img;
}

QByteArray Encode(const QImage& img, const char* format, int quality)
{
    QByteArray bytes;
    QBuffer buf(&bytes);
    buf.open(QIODevice::WriteOnly);
    QImageWriter w(&buf, format);
    if (quality >= 0)
        w.setQuality(quality);
    if (!w.write(img))
        Raise(ErrNo::InvalidProcedureCall, QStringLiteral("Cannot encode the chart as %1: %2").arg(QLatin1String(format), w.errorString()));
    return bytes;
}

} // namespace

QByteArray ChartPictureBytes(TChartModel& chart, PictureFormat format, QSize size, int jpegQuality)
{
    QSize layout = chart.drawSize();
    if (layout.isEmpty())
        layout = size;
    const QSize target(size.width() > 0 ? size.width() : layout.width(), size.height() > 0 ? size.height() : layout.height());
    if (layout.isEmpty() || target.isEmpty() || target.width() > 20000 || target.height() > 20000)
        Raise(ErrNo::InvalidProcedureCall,
              QStringLiteral("Invalid picture size %1 x %2").arg(std::max(0, target.width())).arg(std::max(0, target.height())));

    switch (format) {
    case PictureFormat::PNG: return Encode(Render(chart, target, layout, true), "png", -1);
    case PictureFormat::BMP: return Encode(Render(chart, target, layout, false).convertToFormat(QImage::Format_RGB888), "bmp", -1);
    case PictureFormat::JPEG: return Encode(Render(chart, target, layout, false).convertToFormat(QImage::Format_RGB32), "jpg", jpegQuality);
    case PictureFormat::GIF: {
        QString error;
        QByteArray b = EncodeGif(Render(chart, target, layout, false), &error);
        if (b.isEmpty())
            Raise(ErrNo::InvalidProcedureCall, QStringLiteral("Cannot encode the chart as GIF: %1").arg(error));
        return b;
    }
    case PictureFormat::PCX: return EncodePcx(Render(chart, target, layout, false));
    case PictureFormat::EMF: return WriteEmf(RecordChart(chart, target, layout));
    case PictureFormat::WMF: return WriteWmf(RecordChart(chart, target, layout));
    case PictureFormat::EPS: return WriteEps(RecordChart(chart, target, layout));
    case PictureFormat::SVG: {
        QByteArray bytes;
        QBuffer buf(&bytes);
        QSvgGenerator gen;
        gen.setOutputDevice(&buf);
        gen.setSize(target);
        gen.setViewBox(QRect(QPoint(0, 0), target));
        gen.setResolution(96);
        gen.setTitle(QStringLiteral("chart"));
        QPainter p(&gen);
        p.scale(double(target.width()) / layout.width(), double(target.height()) / layout.height());
        ChartRenderer::Draw(chart, p, QRect(QPoint(0, 0), layout));
        p.end();
        return bytes;
    }
    }
    return {};
}

void SaveChartPicture(TChartModel& chart, PictureFormat format, const QString& file, QSize size, int jpegQuality)
{
    const QByteArray bytes = ChartPictureBytes(chart, format, size, jpegQuality);
    const QString failure = SafeWriteFile(file, bytes);
    if (!failure.isEmpty())
        Raise(ErrNo::PathNotFound, failure);
}

PictureFormat TExportFormat::effective() const
{
    if (format_ == PictureFormat::EMF && !Enhanced)
        return PictureFormat::WMF;
    return format_;
}

void TExportFormat::SaveToFile(const QString& file)
{
    SaveChartPicture(*chart_, effective(), file, QSize(Width, Height), Quality);
}

QByteArray TExportFormat::SaveToBytes() { return ChartPictureBytes(*chart_, effective(), QSize(Width, Height), Quality); }

} // namespace tallix
