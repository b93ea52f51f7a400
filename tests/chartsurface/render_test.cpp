// What a drawn chart reports back: mark texts and positions, point positions, paging,
// annotation bounds, pie radii, the growing animation and the surface events.
#include "chartsurface/chart_export.h"
#include "chartsurface/chart_renderer.h"
#include "chartsurface/tchart.h"
#include "chartsurface/tchart_array.h"
#include "foundation/vb_error.h"
#include "chartsurface/vector_picture.h"
#include "sample_charts.h"
#include "support/picture_measures.h"

#include <QApplication>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QTemporaryDir>

#include <gtest/gtest.h>

using namespace tallix;

namespace {

const QSize kSize(640, 400);

QStringList TextsOf(TChartModel& m, QSize size = kSize)
{
    QStringList out;
    for (const auto& it : RecordChart(m, size, size).items)
        if (it.kind == VecPrimitive::Text)
            out << it.text;
    return out;
}

QRect MarkRect(TSeries& s, int i)
{
    const TMarkPosition& p = s.Marks.Positions.Position(i);
    return QRect(p.LeftTop, QSize(p.Width, p.Height));
}

} // namespace

TEST(ChartRender, MarkTextsByStyle)
{
    struct Case {
        int style;
        bool multiLine;
        QString label;
        QStringList expected; // text runs of the first mark
    };
    const Case cases[] = {
        {0, false, "", {"12"}},
        {1, false, "", {"30%"}},
        {2, false, "12 /", {"12 /"}},
        {2, false, "", {"12"}},
        {3, false, "12 /", {"12 / 30%"}},
        {3, true, "12", {"12", "30%"}},
        {4, false, "B) ", {"B) 12"}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.style);
        TChartModel m;
        TSeries& s = m.SERIES(m.AddSeries(scBar));
        s.Add(12, c.label);
        s.Add(28, "x");
        s.Marks.Style = c.style;
        s.Marks.MultiLine = c.multiLine;
        s.PercentFormat = "0%";
        s.ValueFormat = "#,##0";
        const QStringList texts = TextsOf(m);
        for (const QString& t : c.expected)
            EXPECT_TRUE(texts.contains(t)) << t.toStdString() << " not in " << texts.join('|').toStdString();
    }
}

TEST(ChartRender, PercentMarksAgainstAZeroSumShowZero)
{
    for (int code : {scBar, scPie}) {
        TChartModel m;
        TSeries& s = m.SERIES(m.AddSeries(code));
        s.Add(0);
        s.Add(0);
        s.Marks.Style = 1;
        s.PercentFormat = "0.0%";
        const QStringList texts = TextsOf(m);
        if (code == scBar)
            EXPECT_EQ(texts.count("0.0%"), 2) << texts.join('|').toStdString();
        else
            EXPECT_FALSE(texts.contains("nan%")); // an empty pie draws no slices and no marks
    }
}

TEST(ChartRender, NullPointsAreNotDrawnAndNotCounted)
{
    TChartModel m;
    TSeries& s = m.SERIES(m.AddSeries(scBar));
    s.AddNull();
    s.Add(1);
    s.Add(3);
    s.Marks.Style = 1;
    s.PercentFormat = "0%";
    const QStringList texts = TextsOf(m);
    EXPECT_TRUE(texts.contains("25%"));
    EXPECT_TRUE(texts.contains("75%"));
    m.Repaint();
    EXPECT_EQ(s.Clicked(s.CalcXPos(0) + 1, s.CalcYPos(0) - 1), -1);
    EXPECT_EQ(s.Marks.Positions.Position(0).Width, 0);
}

// No mark may touch a bar, another mark, or leave the chart, at any bar count from 2 to 20.
TEST(ChartRender, MarksOfNegativeBarsStayOnTheChart)
{
    for (const QString family : {"bar", "hbar3d"}) {
        TChartModel m;
        samples::Build(m, family);
        TSeries& s = m.SERIES(0);
        s.PointValue(1) = -30;
        s.PointValue(3) = 40;
        m.Repaint();
        const QRect chart(QPoint(0, 0), m.drawSize());
        for (int i = 0; i < s.Count(); ++i)
            EXPECT_TRUE(chart.contains(MarkRect(s, i))) << family.toStdString() << " mark " << i;
        const TAxis& val = family == "bar" ? m.Axis.Left : m.Axis.Bottom;
        EXPECT_LT(val.DrawnMinimum(), -30);
        EXPECT_GT(val.DrawnMaximum(), 40);
    }
}

TEST(ChartRender, MarksNeverCollideFromTwoToTwentyBars)
{
    for (const QString family : {"bar", "bar3d", "hbar", "hbar3d", "cylinder", "pyramid"}) {
        for (int n = 2; n <= 20; ++n) {
            SCOPED_TRACE(family.toStdString() + " " + std::to_string(n));
            TChartModel m;
            samples::Build(m, family, n);
            m.setHeadlessSize(QSize(1280, 720));
            TSeries& s = m.SERIES(0);
            s.Marks.Style = 3; // number and percent: the widest marks the chart code asks for
            for (int i = 0; i < s.Count(); ++i)
                s.PointLabel(i) = QString::number(s.PointValue(i)) + " /";
            m.Repaint();
            const QRect chart(QPoint(0, 0), QSize(1280, 720));
            for (int i = 0; i < s.Count(); ++i) {
                const QRect mark = MarkRect(s, i);
                ASSERT_GT(mark.width(), 0);
                EXPECT_TRUE(chart.contains(mark)) << "mark " << i << " leaves the chart";
                for (int j = 0; j < s.Count(); ++j) {
                    EXPECT_FALSE(mark.adjusted(1, 1, -1, -1).intersects(s.drawn_[size_t(j)].hit)) << "mark " << i << " on bar " << j;
                    if (j != i) {
                        EXPECT_FALSE(mark.adjusted(1, 1, -1, -1).intersects(MarkRect(s, j))) << "marks " << i << " and " << j;
                    }
                }
            }
        }
    }
}

TEST(ChartRender, PieMarksDoNotOverlapEvenForThinSlices)
{
    TChartModel m;
    TSeries& s = m.SERIES(m.AddSeries(scPie));
    for (double v : {50.0, 1.0, 1.0, 1.0, 1.0, 40.0, 1.0, 1.0})
        s.Add(v, "Option) ");
    s.Marks.Style = 3;
    m.Repaint();
    for (int i = 0; i < s.Count(); ++i)
        for (int j = i + 1; j < s.Count(); ++j)
            EXPECT_FALSE(MarkRect(s, i).adjusted(1, 1, -1, -1).intersects(MarkRect(s, j))) << i << " and " << j;
}

TEST(ChartRender, CustomMarkPositionIsKept)
{
    TChartModel m;
    samples::Build(m, "bar");
    TSeries& s = m.SERIES(0);
    m.Repaint();
    TMarkPosition& p = s.Marks.Positions.Position(1);
    const QSize drawnSize(p.Width, p.Height);
    p.Custom = true;
    p.LeftTop = QPoint(300, 17);
    m.Repaint();
    EXPECT_EQ(s.Marks.Positions.Position(1).LeftTop, QPoint(300, 17));
    EXPECT_EQ(QSize(p.Width, p.Height), drawnSize);
}

TEST(ChartRender, PointPositionsFollowTheValues)
{
    for (const QString family : {"bar", "hbar"}) {
        TChartModel m;
        samples::Build(m, family); // values 12, 30, 7, 22, 18
        m.Repaint();
        TSeries& s = m.SERIES(0);
        if (family == "bar") {
            EXPECT_LT(s.CalcXPos(0), s.CalcXPos(1));
            EXPECT_LT(s.CalcYPos(1), s.CalcYPos(0)) << "a higher value is drawn higher";
            EXPECT_EQ(s.Clicked(s.CalcXPos(1) + 2, s.CalcYPos(1) + 2), 1);
        } else {
            EXPECT_GT(s.CalcXPos(1), s.CalcXPos(0)) << "a higher value reaches further right";
            EXPECT_GT(s.CalcYPos(0), s.CalcYPos(1)) << "the first bar is at the bottom";
        }
    }
}

TEST(ChartRender, PagingShowsOnePageAtATime)
{
    struct Case {
        int page;
        bool scaleLast;
        double min, max;
    };
    for (const Case& c : {Case{1, true, -0.5, 9.5}, Case{2, true, 9.5, 19.5}, Case{2, false, 9.5, 11.5}}) {
        TChartModel m;
        samples::Build(m, "bar", 12);
        m.Page.MaxPointsPerPage = 10;
        m.Page.ScaleLastPage = c.scaleLast;
        m.Page.Current = c.page;
        const QStringList texts = TextsOf(m);
        m.Repaint();
        EXPECT_DOUBLE_EQ(m.Axis.Bottom.DrawnMinimum(), c.min);
        EXPECT_DOUBLE_EQ(m.Axis.Bottom.DrawnMaximum(), c.max);
        // The twelfth option's label is on page 2 only.
        EXPECT_EQ(texts.contains("L"), c.page == 2) << texts.join('|').toStdString();
    }
}

TEST(ChartRender, FixedAndAutomaticAxisBounds)
{
    TChartModel m;
    samples::Build(m, "bar");
    m.Axis.Left.Automatic = false;
    m.Axis.Left.Minimum = 0;
    m.Axis.Left.Maximum = 100;
    m.Repaint();
    EXPECT_EQ(m.Axis.Left.DrawnMaximum(), 100);
    m.Axis.Left.AutomaticMaximum = true;
    m.Repaint();
    EXPECT_GE(m.Axis.Left.DrawnMaximum(), 30);
    EXPECT_LT(m.Axis.Left.DrawnMaximum(), 100);
    m.Axis.Bottom.Automatic = false;
    m.Axis.Bottom.Minimum = 0.5;
    m.Axis.Bottom.Maximum = 5.5;
    m.Repaint();
    EXPECT_EQ(m.Axis.Bottom.DrawnMinimum(), 0.5);
}

TEST(ChartRender, AnnotationBoundsAfterPaint)
{
    TChartModel m;
    m.setHeadlessSize(kSize);
    samples::Build(m, "bar");
    TAnnotationTool& a = m.Tools.Items(m.Tools.Add(tkAnnotation)).asAnnotation();
    a.Text = "Abstain Count = 3";
    a.Shape.Font.Size = 16;
    a.Position = 3;
    m.Repaint();
    EXPECT_GT(a.ShapeBounds.Left, kSize.width() / 2);
    EXPECT_GT(a.ShapeBounds.Top, kSize.height() / 2);
    EXPECT_LE(a.ShapeBounds.Right, kSize.width());
    EXPECT_LE(a.ShapeBounds.Bottom, kSize.height());
    EXPECT_EQ(a.Shape.Left.value, a.ShapeBounds.Left) << "an automatic position reads where it was drawn";
    EXPECT_FALSE(a.Shape.Left.custom);

    a.Shape.Left = 40;
    a.Shape.Top = 50;
    m.Repaint();
    EXPECT_EQ(a.ShapeBounds.Left, 40);
    EXPECT_EQ(a.ShapeBounds.Top, 50);

    // A glyph's height is measured by drawing it large once.
    a.Shape.Font.Size = 56;
    m.Repaint();
    const int big = a.ShapeBounds.Bottom - a.ShapeBounds.Top;
    a.Shape.Font.Size = 1;
    m.Repaint();
    EXPECT_GT(big, 3 * (a.ShapeBounds.Bottom - a.ShapeBounds.Top));
}

TEST(ChartRender, MissingFontsFallBackToDejaVuAndSymbolsMap)
{
    TFont f;
    f.Name = "No Such Font At All";
    EXPECT_EQ(ChartRenderer::MakeFont(f).family(), "DejaVu Sans");
    f.Name = "Wingdings";
    if (ChartRenderer::MakeFont(f).family() == "DejaVu Sans") {
        EXPECT_EQ(ChartRenderer::MapSymbolText(f, QString(QChar(0xFC))), QString(QChar(0x2714)));
    }
    f.Name = "DejaVu Sans";
    EXPECT_EQ(ChartRenderer::MapSymbolText(f, QString(QChar(0xFC))), QString(QChar(0xFC)));
}

TEST(ChartRender, PieRadiiAreReadAfterPaintAndCanBeFixed)
{
    TChartModel m;
    samples::Build(m, "pie3d");
    TSeries& s = m.SERIES(0);
    m.Repaint();
    const int rx = s.XRadius, ry = s.YRadius;
    EXPECT_GT(rx, 50);
    EXPECT_LT(ry, rx) << "a tilted pie is an ellipse";
    m.setHeadlessSize(QSize(900, 600));
    s.XRadius = rx;
    s.YRadius = ry;
    m.Repaint();
    EXPECT_EQ(int(s.XRadius), rx) << "fixed radii survive a bigger chart";
    s.XRadius.SetAutomatic();
    s.YRadius.SetAutomatic();
    m.Repaint();
    EXPECT_GT(int(s.XRadius), rx);
}

TEST(SeriesAnimation, StepsDrawnAndEventsRaised)
{
    struct Case {
        int steps, drawEvery, draws;
    };
    for (const Case& c : {Case{10, 0, 10}, Case{10, 1, 10}, Case{10, 3, 4}, Case{75, 0, 75}, Case{5, 10, 1}}) {
        SCOPED_TRACE(std::to_string(c.steps) + "/" + std::to_string(c.drawEvery));
        TChart chart;
        chart.resize(kSize);
        samples::Build(chart, "bar3d");
        std::vector<double> seen;
        std::vector<double> axisMax;
        int events = 0;
        QObject::connect(&chart, &TChart::OnAfterDraw, [&](int index) {
            EXPECT_EQ(index, 3);
            ++events;
            seen.push_back(chart.SERIES(0).PointValue(1));
            axisMax.push_back(chart.Axis.Left.DrawnMaximum());
        });
        chart.Index = 3;
        TSeriesAnimationTool& anim = chart.Tools.Items(chart.Tools.Add(tkSeriesAnimation)).asSeriesAnimation();
        anim.Series = 0;
        anim.Steps = c.steps;
        anim.DrawEvery = c.drawEvery;
        anim.Execute();
        EXPECT_EQ(events, c.draws);
        ASSERT_FALSE(seen.empty());
        EXPECT_DOUBLE_EQ(seen.back(), 30) << "the last step draws the full value";
        EXPECT_TRUE(std::is_sorted(seen.begin(), seen.end())) << "the series grows";
        EXPECT_EQ(std::count(axisMax.begin(), axisMax.end(), axisMax.front()), long(axisMax.size())) << "the axis stands still";
        EXPECT_EQ(chart.SERIES(0).PointValue(1), 30);
        EXPECT_FALSE(anim.Running());
    }
}

TEST(SeriesAnimation, GrowsFromBaselineOrFromTheMinimum)
{
    // Half way, point 1 (30) is half of 30 from 0, or half of 23 from the minimum 7.
    for (auto [atMin, expected] : {std::pair{false, 15.0}, std::pair{true, 18.5}}) {
        TChart chart;
        chart.resize(kSize);
        samples::Build(chart, "bar");
        std::vector<double> seen;
        QObject::connect(&chart, &TChart::OnAfterDraw, [&](int) { seen.push_back(chart.SERIES(0).PointValue(1)); });
        TSeriesAnimationTool& anim = chart.Tools.Items(chart.Tools.Add(tkSeriesAnimation)).asSeriesAnimation();
        anim.Series = 0;
        anim.Steps = 2;
        anim.StartAtMin = atMin;
        anim.Execute();
        ASSERT_EQ(seen.size(), 2u);
        EXPECT_DOUBLE_EQ(seen[0], expected);
        EXPECT_DOUBLE_EQ(seen[1], 30);
    }
}

TEST(SeriesAnimation, WithoutASeriesDoesNothing)
{
    TChart chart;
    int draws = 0;
    QObject::connect(&chart, &TChart::OnAfterDraw, [&](int) { ++draws; });
    TSeriesAnimationTool& anim = chart.Tools.Items(chart.Tools.Add(tkSeriesAnimation)).asSeriesAnimation();
    anim.Execute(); // Series -1
    anim.Series = 4;
    anim.Execute();
    EXPECT_EQ(draws, 0);
}

TEST(ChartEvents, KeysMouseAndLegendTextCarryTheIndex)
{
    TChart chart(nullptr, 2);
    chart.resize(kSize);
    samples::Build(chart, "pie");
    std::vector<std::tuple<int, int, int>> keys;
    std::vector<std::tuple<int, int, int, int, int>> downs;
    std::vector<std::tuple<int, int, int, int>> moves;
    QObject::connect(&chart, &TChart::OnKeyDown, [&](int c, int k, int s) { keys.emplace_back(c, k, s); });
    QObject::connect(&chart, &TChart::OnMouseDown, [&](int c, int b, int s, int x, int y) { downs.emplace_back(c, b, s, x, y); });
    QObject::connect(&chart, &TChart::OnMouseMove, [&](int c, int s, int x, int y) { moves.emplace_back(c, s, x, y); });

    struct Key {
        int qt;
        Qt::KeyboardModifiers mods;
        int code, shift;
    };
    for (const Key& k : {Key{Qt::Key_Escape, {}, 27, 0}, Key{Qt::Key_Q, Qt::ControlModifier, 81, 2}, Key{Qt::Key_S, {}, 83, 0},
                         Key{Qt::Key_PageDown, {}, 34, 0}, Key{Qt::Key_Left, {}, 37, 0}, Key{Qt::Key_A, Qt::AltModifier, 65, 4},
                         Key{Qt::Key_Space, Qt::ShiftModifier, 32, 1}}) {
        QKeyEvent e(QEvent::KeyPress, k.qt, k.mods);
        QApplication::sendEvent(&chart, &e);
        ASSERT_FALSE(keys.empty());
        EXPECT_EQ(keys.back(), std::make_tuple(2, k.code, k.shift));
    }
    QMouseEvent down(QEvent::MouseButtonPress, QPointF(10, 20), QPointF(10, 20), Qt::RightButton, Qt::RightButton, Qt::NoModifier);
    QApplication::sendEvent(&chart, &down);
    ASSERT_EQ(downs.size(), 1u);
    EXPECT_EQ(downs[0], std::make_tuple(2, 2, 0, 10, 20));
    QMouseEvent move(QEvent::MouseMove, QPointF(30, 41), QPointF(30, 41), Qt::NoButton, Qt::NoButton, Qt::NoModifier);
    QApplication::sendEvent(&chart, &move);
    ASSERT_EQ(moves.size(), 1u);
    EXPECT_EQ(moves[0], std::make_tuple(2, 0, 30, 41));

    chart.Legend.Visible = true;
    std::vector<int> asked;
    QObject::connect(&chart, &TChart::OnGetLegendText, [&](int c, int legendIndex, QString& text) {
        EXPECT_EQ(c, 2);
        asked.push_back(legendIndex);
        if (legendIndex == 1)
            text = "Live Votes";
    });
    const QStringList texts = TextsOf(chart);
    EXPECT_EQ(asked, (std::vector<int>{0, 1, 2, 3, 4}));
    EXPECT_TRUE(texts.contains("Live Votes"));
}

TEST(ChartEvents, RepaintDrawsOnViewAndOffView)
{
    TChart chart;
    chart.Move(0, 0, 640 * kTwipsPerPixel, 400 * kTwipsPerPixel);
    EXPECT_EQ(chart.width(), 640);
    EXPECT_EQ(chart.Width(), 9600);
    samples::Build(chart, "bar");
    int draws = 0;
    QObject::connect(&chart, &TChart::OnAfterDraw, [&](int) { ++draws; });
    chart.Repaint(); // off view: laid out and drawn all the same
    EXPECT_EQ(draws, 1);
    EXPECT_GT(chart.SERIES(0).Marks.Positions.Position(0).Width, 0);
    chart.show();
    QApplication::processEvents();
    const int before = draws;
    chart.Repaint();
    EXPECT_EQ(draws, before + 1);
    EXPECT_TRUE(chart.Visible());
    chart.SetVisible(false);
    EXPECT_FALSE(chart.Visible());

    // A handler that repaints from inside the event does not start a draw within the draw.
    QObject::connect(&chart, &TChart::OnAfterDraw, [&](int) { chart.Repaint(); });
    const int hidden = draws;
    chart.Repaint();
    EXPECT_EQ(draws, hidden + 1);
}

TEST(ChartRender, PanelColourBackgroundPictureAndTransparency)
{
    TChartModel m;
    m.setHeadlessSize(QSize(200, 100));
    m.Panel.Color = clNone;
    m.Repaint();
    EXPECT_EQ(qAlpha(m.lastFrame().pixel(2, 2)), 0) << "no panel colour is transparent";
    m.Panel.Color = Rgb(237, 237, 237);
    m.Repaint();
    EXPECT_EQ(m.lastFrame().pixelColor(2, 2), QColor(237, 237, 237));

    QTemporaryDir dir;
    QImage back(4, 2, QImage::Format_RGB32);
    back.fill(QColor(10, 200, 30));
    const QString file = dir.filePath("bcktemp.bmp");
    ASSERT_TRUE(back.save(file));
    m.Panel.BackImageLoad(file);
    m.Panel.BackImageMode = 1; // stretched over the whole chart
    m.Repaint();
    EXPECT_EQ(m.lastFrame().pixelColor(198, 98), QColor(10, 200, 30));
    m.Panel.BackImageClear();
    m.Repaint();
    EXPECT_EQ(m.lastFrame().pixelColor(198, 98), QColor(237, 237, 237));
    m.Frame.Visible = true;
    m.Frame.Color = Rgb(255, 0, 0);
    m.Repaint();
    EXPECT_EQ(m.lastFrame().pixelColor(0, 50), QColor(255, 0, 0)) << "the element's frame";
}

// Whatever the values and sizes, a draw and an export finish and say nothing wrong.
TEST(ChartRender, DegenerateInputDrawsWithoutFailing)
{
    const double inf = std::numeric_limits<double>::infinity();
    const std::vector<std::vector<double>> valueSets = {
        {}, {0}, {std::nan(""), 3}, {inf, -inf, 2}, {-5, -2, 4}, {1e12, 1}, {-3, -1}, {0.001, 0.002}};
    for (int code : {scBar, scHorizBar, scPie, scDonut, scWordCloud})
        for (const auto& values : valueSets)
            for (QSize size : {QSize(1, 1), QSize(30, 20), QSize(640, 400)}) {
                SCOPED_TRACE(std::to_string(code) + " " + std::to_string(values.size()) + " " + std::to_string(size.width()));
                TChartModel m;
                m.setHeadlessSize(size);
                TSeries& s = m.SERIES(m.AddSeries(code));
                for (double v : values)
                    s.Add(v, "x");
                s.Marks.Style = 3;
                m.Legend.Visible = true;
                EXPECT_NO_THROW(m.Repaint());
                EXPECT_NO_THROW(ChartPictureBytes(m, PictureFormat::EMF));
                for (int i = 0; i < s.Count(); ++i) {
                    const TMarkPosition& p = s.Marks.Positions.Position(i);
                    EXPECT_LT(std::abs(p.LeftTop.x()), 100000);
                    EXPECT_LT(std::abs(p.LeftTop.y()), 100000);
                }
            }
}

TEST(ChartRender, SideBySideSeriesShareTheSlot)
{
    TChartModel m;
    m.setHeadlessSize(QSize(800, 500));
    for (int t = 0; t < 3; ++t) {
        TSeries& s = m.SERIES(m.AddSeries(scBar));
        s.Title = QStringLiteral("Round %1").arg(t + 1);
        for (int i = 0; i < 4; ++i)
            s.Add(5 + 3 * i + t, "", samples::OptionColour(t));
    }
    m.Repaint();
    for (int i = 0; i < 4; ++i) {
        EXPECT_LT(m.SERIES(0).CalcXPos(i), m.SERIES(1).CalcXPos(i));
        EXPECT_LT(m.SERIES(1).CalcXPos(i), m.SERIES(2).CalcXPos(i));
        EXPECT_LT(m.SERIES(2).CalcXPos(i), m.SERIES(0).CalcXPos(std::min(i + 1, 3)) + (i == 3 ? 1000 : 0));
    }
    m.SERIES(1).Active = false;
    m.Repaint();
    EXPECT_EQ(m.SERIES(1).Clicked(m.SERIES(0).CalcXPos(0) + 1, 400), -1) << "an inactive series is not drawn";
}

TEST(ChartRender, AxisIncrementVisibleInvertedAndTitleAngle)
{
    struct Case {
        const char* name;
        std::function<void(TChartModel&)> set;
        std::function<void(TChartModel&, const VectorPicture&)> check;
    };
    auto texts = [](const VectorPicture& pic) {
        QStringList out;
        for (const auto& it : pic.items)
            if (it.kind == VecPrimitive::Text)
                out << it.text;
        return out;
    };
    const Case cases[] = {
        {"increment", [](TChartModel& m) { m.Axis.Left.Increment = 7; },
         [&](TChartModel&, const VectorPicture& pic) {
             const QStringList t = texts(pic);
             for (const char* tick : {"0", "7", "14", "21", "28"})
                 EXPECT_TRUE(t.contains(tick)) << tick;
             EXPECT_FALSE(t.contains("10"));
         }},
        {"value axis hidden", [](TChartModel& m) { m.Axis.Left.Visible = false; },
         [&](TChartModel&, const VectorPicture& pic) {
             EXPECT_FALSE(texts(pic).contains("20"));
             EXPECT_TRUE(texts(pic).contains("C")) << "the other axis stays";
         }},
        {"inverted", [](TChartModel& m) { m.Axis.Bottom.Inverted = true; },
         [&](TChartModel& m, const VectorPicture&) { EXPECT_GT(m.SERIES(0).CalcXPos(0), m.SERIES(0).CalcXPos(1)); }},
        {"title angle", [](TChartModel& m) { m.Axis.Left.Title.Caption = "Votes"; m.Axis.Left.Title.Angle = 90; },
         [&](TChartModel&, const VectorPicture& pic) {
             bool found = false;
             for (const auto& it : pic.items)
                 if (it.kind == VecPrimitive::Text && it.text == "Votes") {
                     found = true;
                     EXPECT_NEAR(it.angle, -90, 0.01) << "reads upwards";
                 }
             EXPECT_TRUE(found);
         }},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        TChartModel m;
        m.setHeadlessSize(kSize);
        samples::Build(m, "bar"); // values 12, 30, 7, 22, 18
        c.set(m);
        m.Repaint();
        c.check(m, RecordChart(m, kSize, kSize));
    }
}

TEST(ChartArray, ElementsAreMadeOnDemandAndCarryTheirIndex)
{
    QWidget form;
    form.resize(kSize);
    TChartArray charts(&form);
    std::vector<int> events;
    charts.onLoad = [&](TChart& c) { QObject::connect(&c, &TChart::OnAfterDraw, [&](int i) { events.push_back(i); }); };
    charts.Load(0).setGeometry(0, 0, 640, 400);
    EXPECT_EQ(charts.UBound(), 0);
    long number = 0;
    try {
        charts(1);
    } catch (const VbError& e) {
        number = e.number();
    }
    EXPECT_EQ(number, 340);
    TChart& second = charts.Load(2);
    EXPECT_EQ(second.width(), 640) << "a new element takes the size of the first";
    EXPECT_FALSE(second.Visible());
    EXPECT_EQ(charts.Count(), 2);
    EXPECT_EQ(charts.UBound(), 2);
    EXPECT_THROW(charts.Load(2), VbError);
    samples::Build(second, "bar");
    second.Repaint();
    charts(0).Repaint();
    EXPECT_EQ(events, (std::vector<int>{2, 0}));
    charts.Unload(2);
    EXPECT_FALSE(charts.Exists(2));
    EXPECT_EQ(charts.UBound(), 0);
}

// A settings document's fill code 1 is solid: no code leaves a bar hollow, whatever its shape.
TEST(ChartRender, BarsOfEveryShapeAreFilledWithFillCodesZeroAndOne)
{
    for (const QString family : {"bar", "bar3d", "cylinder", "pyramid"})
        for (int code : {0, 1}) {
            TChartModel m;
            m.setHeadlessSize(kSize);
            samples::Build(m, family);
            m.SERIES(0).BarBrush.Style = code;
            m.SERIES(0).BarPen.Visible = true;
            m.Repaint();
            // Filled bars cover a good part of the picture, hollow ones only their outlines.
            const QImage img = QImage::fromData(ChartPictureBytes(m, PictureFormat::BMP, kSize));
            EXPECT_GT(tallix::testing::ColouredShare(img), 0.08) << family.toStdString() << " with fill code " << code;
        }
}
