#pragma once
// Saving a chart as a picture file: the raster formats (PNG, BMP, JPEG, GIF, PCX) and the
// vector ones (EMF, WMF, EPS, SVG). A chart is laid out at its own size and scaled to the
// size asked for, so the file shows exactly what the window shows, marks moved by hand
// included. Files are replaced whole; a failure raises VbError and leaves any old file.

#include <QByteArray>
#include <QSize>
#include <QString>

namespace tallix {

class TChartModel;

enum class PictureFormat { BMP, PNG, JPEG, GIF, PCX, EPS, EMF, WMF, SVG };

// The file's bytes for the chart at the given pixel size (0 takes the chart's own size).
QByteArray ChartPictureBytes(TChartModel& chart, PictureFormat format, QSize size = {}, int jpegQuality = 90);
void SaveChartPicture(TChartModel& chart, PictureFormat format, const QString& file, QSize size = {}, int jpegQuality = 90);

// One entry of TChart::Export: Width and Height in pixels (0 keeps the chart's size).
class TExportFormat {
public:
    TExportFormat(TChartModel* chart, PictureFormat format) : chart_(chart), format_(format) {}
    int Width = 0;
    int Height = 0;
    int Quality = 90;      // JPEG
    bool Enhanced = true;  // metafile: EMF when true, WMF when false
    void SaveToFile(const QString& file);
    QByteArray SaveToBytes();

private:
    PictureFormat effective() const;
    TChartModel* chart_;
    PictureFormat format_;
};

class TExport {
public:
    explicit TExport(TChartModel* chart)
        : asBMP(chart, PictureFormat::BMP), asPNG(chart, PictureFormat::PNG), asJPEG(chart, PictureFormat::JPEG),
          asGIF(chart, PictureFormat::GIF), asPCX(chart, PictureFormat::PCX), asEPS(chart, PictureFormat::EPS),
          asMetafile(chart, PictureFormat::EMF), asSVG(chart, PictureFormat::SVG)
    {
    }
    TExportFormat asBMP, asPNG, asJPEG, asGIF, asPCX, asEPS, asMetafile, asSVG;
};

} // namespace tallix
