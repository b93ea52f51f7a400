#pragma once
// Sample charts of each family, set up the way the chart code sets them up, for the golden
// images, the export tests and the benchmark.

#include "chartsurface/chart_model.h"

#include <QString>
#include <QStringList>

namespace tallix::samples {

inline const QStringList& Families()
{
    static const QStringList f = {"bar", "bar3d", "hbar", "hbar3d", "cylinder", "pyramid", "pie", "pie3d", "donut", "donut3d", "multibar", "wordcloud"};
    return f;
}

// Options a family's sample shows unless told otherwise: a word cloud wants words enough
// to be a cloud.
inline int DefaultCount(const QString& family) { return family == "wordcloud" ? 16 : 5; }

inline OleColor OptionColour(int i)
{
    static const OleColor c[] = {Rgb(31, 119, 180), Rgb(255, 127, 14), Rgb(44, 160, 44), Rgb(214, 39, 40),
                                 Rgb(148, 103, 189), Rgb(140, 86, 75), Rgb(227, 119, 194), Rgb(127, 127, 127),
                                 Rgb(188, 189, 34), Rgb(23, 190, 207), Rgb(57, 59, 121)};
    return c[i % 11];
}

inline std::vector<double> Values(int n)
{
    static const double v[] = {12, 30, 7, 22, 18, 9, 15, 26, 4, 11, 19, 8, 14, 21, 5, 17, 10, 24, 6, 13};
    return std::vector<double>(v, v + std::min(n, 20));
}

// Three rounds side by side, one series each, with a legend of the rounds.
inline void BuildMulti(TChartModel& m, int n)
{
    m.Aspect.View3D = true;
    m.Aspect.Chart3DPercent = 25;
    m.Legend.Visible = true;
    m.Legend.Alignment = 3;
    m.Panel.MarginTop = 10;
    m.Panel.MarginRight = 6;
    const auto values = Values(n);
    for (int t = 0; t < 3; ++t) {
        TSeries& s = m.SERIES(m.AddSeries(scBar));
        s.Title = QStringLiteral("Round %1").arg(t + 1);
        s.Color = OptionColour(t);
        for (int i = 0; i < int(values.size()); ++i)
            s.Add(values[size_t((i + 2 * t) % values.size())], QString(), OptionColour(t));
        s.BarPen.Visible = false;
        s.Marks.Transparent = true;
        s.Marks.Style = 0;
        s.Marks.ArrowLength = 6;
        s.Marks.Arrow.Visible = false;
    }
    m.Axis.Bottom.Labels.Clear();
    for (int i = 0; i < int(values.size()); ++i)
        m.Axis.Bottom.Labels.Add(i, QString(QChar('A' + i % 26)));
}

// Answers to a free-text question, most given first, with accents and other scripts; one
// word keeps a colour of its own.
inline void BuildWordCloud(TChartModel& m, int n)
{
    struct Answer {
        const char* word;
        double count;
    };
    static const Answer answers[] = {
        {"Inspiring", 34}, {"Useful", 27}, {"Long", 21}, {"Fun", 18}, {"Interactive", 15}, {"Clear", 12},
        {"Café", 10}, {"Überraschend", 9}, {"Engaging", 8}, {"Informative", 7}, {"Naïve", 5}, {"Ελπίδα", 4},
        {"Отлично", 4}, {"Señal", 3}, {"Tiring", 2}, {"Zoë", 1}, {"Crisp", 1}, {"Warm", 1}, {"Quick", 1}, {"Deep", 1}};
    TSeries& s = m.SERIES(m.AddSeries(scWordCloud));
    for (int i = 0; i < std::min(n, 20); ++i)
        s.Add(answers[i].count, QString::fromUtf8(answers[i].word), i == 3 ? OptionColour(1) : clNone);
    s.Marks.Font.Bold = true;
}

// Builds family `name` with n options on chart m.
inline void Build(TChartModel& m, const QString& name, int n = 5)
{
    m.RemoveAllSeries();
    if (name == "multibar")
        return BuildMulti(m, n);
    if (name == "wordcloud")
        return BuildWordCloud(m, n);
    const bool pie = name.startsWith("pie") || name.startsWith("donut");
    const bool horiz = name.startsWith("hbar");
    const bool view3d = name.endsWith("3d") || name == "cylinder" || name == "pyramid";
    const int code = name.startsWith("donut") ? scDonut : pie ? scPie : horiz ? scHorizBar : scBar;
    const int si = m.AddSeries(code);
    TSeries& s = m.SERIES(si);
    m.Aspect.Orthogonal = true;
    m.Aspect.View3D = view3d;
    m.Zoom.Enable = false;
    const auto values = Values(n);
    for (int i = 0; i < int(values.size()); ++i)
        s.Add(values[size_t(i)], pie ? QString(QChar('A' + i)) + ") " : QString(), OptionColour(i));
    s.Marks.Transparent = true;
    s.Marks.Font.Size = 12;
    s.Marks.Font.Bold = true;
    s.PercentFormat = "0%";
    if (pie) {
        s.Circled = true;
        s.PiePen.Visible = true;
        s.PiePen.Color = Rgb(255, 255, 255);
        m.Aspect.Elevation = 315;
        m.Aspect.Chart3DPercent = 50;
        s.Marks.Style = 3;
        s.Marks.Arrow.Visible = false;
        s.Marks.ArrowLength = 12;
        m.Panel.MarginTop = 4;
        m.Panel.MarginRight = view3d ? 10 : 3;
    } else {
        s.BarPen.Visible = false;
        s.AutoMarkPosition = false;
        s.AutoBarSize = true;
        s.Marks.Style = 1;
        s.Marks.ArrowLength = 20;
        s.Marks.Arrow.Visible = false;
        if (name == "cylinder")
            s.BarStyle = 3;
        if (name == "pyramid")
            s.BarStyle = 1;
        m.Aspect.Chart3DPercent = 40;
        m.Panel.MarginTop = horiz ? 4 : 20;
        m.Panel.MarginRight = 10;
        m.Panel.MarginBottom = 8;
        if (!view3d)
            m.Walls.Back.Visible = false;
        TAxis& cat = horiz ? m.Axis.Left : m.Axis.Bottom;
        cat.Labels.Clear();
        for (int i = 0; i < int(values.size()); ++i)
            cat.Labels.Add(i, QString(QChar('A' + i % 26)));
    }
}

} // namespace tallix::samples
