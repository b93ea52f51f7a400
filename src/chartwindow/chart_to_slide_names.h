#pragma once
// The names a chart picture gets on the slide and the files it passes through. Later runs
// find, replace or keep a chart by its shape name alone, so these rules are a contract.

#include <QString>

namespace tallix {

struct ChartExportChoice {
    enum Kind { BMP, PNG, PCX, EPS, WMF, JPG, GIF, EMF } kind = EMF;
    QString extension;   // with its dot
    QString logLine;
};

// The `CHART EXPORT FORMAT` switch, any case; anything unknown gives EMF.
ChartExportChoice ChartExportFor(const QString& setting);

// <temp>/tlx_chart_<element>_<tenths of a second since midnight><extension>
QString TempChartFileName(const QString& tempFolder, int element, double secondsSinceMidnight,
                          const QString& extension);

// A chart of an earlier run that a new export replaces. "BAK" shapes and reshow charts
// stay, but a reshow sample goes.
bool IsLiveChartName(const QString& shapeName);

// Name of chart element `element`: the one picture of an ordinary vote, the chart and
// iteration pictures of a series vote (vType 2).
QString ChartShapeName(short vType, int element);

} // namespace tallix
