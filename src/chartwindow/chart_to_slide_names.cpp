#include "chart_to_slide_names.h"

#include <QDir>

#include <cmath>

namespace tallix {

ChartExportChoice ChartExportFor(const QString& setting)
{
    const QString s = setting.trimmed().toUpper();
    struct Row {
        const char* key;
        ChartExportChoice::Kind kind;
        const char* ext;
    };
    static const Row rows[] = {{"BMP", ChartExportChoice::BMP, ".bmp"}, {"PNG", ChartExportChoice::PNG, ".png"},
                               {"PCX", ChartExportChoice::PCX, ".pcx"}, {"EPS", ChartExportChoice::EPS, ".eps"},
                               {"WMF", ChartExportChoice::WMF, ".wmf"}, {"JPG", ChartExportChoice::JPG, ".jpg"},
                               {"GIF", ChartExportChoice::GIF, ".gif"}};
    for (const Row& r : rows) {
        if (s == QLatin1String(r.key))
            return {r.kind, QString::fromLatin1(r.ext), QStringLiteral("Export chart to ") + QLatin1String(r.key)};
    }
    return {ChartExportChoice::EMF, QStringLiteral(".emf"), QStringLiteral("Export chart to enhanced MetaFile (EMF)")};
}

QString TempChartFileName(const QString& tempFolder, int element, double secondsSinceMidnight,
                          const QString& extension)
{
    const qint64 tenths = qint64(std::floor(secondsSinceMidnight * 10.0));
    return QDir(tempFolder).filePath(QStringLiteral("tlx_chart_%1_%2%3").arg(element).arg(tenths).arg(extension));
}

bool IsLiveChartName(const QString& shapeName)
{
    const QString n = shapeName.toLower();
    if (!n.contains(QLatin1String("tallix chart")) && !n.contains(QLatin1String("tallix ratings")))
        return false;
    if (n.contains(QLatin1String("bak")))
        return false;
    return !n.contains(QLatin1String("reshow")) || n.contains(QLatin1String("sample"));
}

QString ChartShapeName(short vType, int element)
{
    if (vType != 2)
        return QStringLiteral("tallix chart");
    if (element < 2)
        return QStringLiteral("tallix chart %1").arg(element);
    return QStringLiteral("tallix iteration %1").arg(element - 1);
}

} // namespace tallix
