// The standard chart built from totals. Golden pictures of each chart kind are compared
// pixel by pixel; to regenerate them after a deliberate change of look (and look at each
// one before committing):
//   TALLIX_REGEN_GOLDEN=1 build/bin/chartwindow_tests --gtest_filter='*Golden*'
#include "chart_fixture.h"

#include "charts/ui/chart_display.h"
#include "chartsurface/chart_export.h"
#include "foundation/numbers.h"
#include "foundation/safe_write.h"

#include <QImage>
#include <QLocale>

#include <gtest/gtest.h>

using namespace tallix;
using namespace tallix::testing;

namespace {

QString GoldenPath(const QString& name)
{
    return QStringLiteral(TALLIX_TESTDATA_DIR "/golden/") + name + QStringLiteral(".png");
}

// Share of pixels that differ by more than a little in any channel: font rasterising may
// move an edge pixel, not the picture.
double DifferingShare(const QImage& a, const QImage& b)
{
    if (a.size() != b.size())
        return 1.0;
    qint64 differ = 0;
    for (int y = 0; y < a.height(); ++y)
        for (int x = 0; x < a.width(); ++x) {
            const QRgb pa = a.pixel(x, y), pb = b.pixel(x, y);
            differ += std::max({std::abs(qRed(pa) - qRed(pb)), std::abs(qGreen(pa) - qGreen(pb)),
                                std::abs(qBlue(pa) - qBlue(pb))}) > 40;
        }
    return double(differ) / (double(a.width()) * a.height());
}

struct GoldenCase {
    const char* name;
    short graphType;
    QVector<double> counts;
    std::function<void(RunContext&)> setup;
};

std::vector<GoldenCase> GoldenCases()
{
    const QVector<double> four{5, 12, 3, 8};
    const QVector<double> withZero{6, 0, 9, 4, 2};
    return {
        {"bar", 2, four, {}},
        {"bar3d_cylinder_numbers", 9, four, [](RunContext& c) { c.showAsPercentOrNumber = 1; }},
        {"bar3d_both_stacked", 3, four, [](RunContext& c) { c.showAsPercentOrNumber = 2; }},
        {"horizontal_bar", 4, four, {}},
        {"horizontal_bar3d_pyramid", 11, four, {}},
        {"pie", 0, withZero, {}},
        {"pie3d", 1, withZero, [](RunContext& c) { c.AspectRatio = 315; }},
        {"donut", 13, withZero, {}},
        {"donut3d", 14, withZero, [](RunContext& c) { c.AspectRatio = 315; }},
        {"paged_12_at_10", 2, {3, 7, 2, 9, 4, 6, 1, 8, 5, 2, 7, 3},
         [](RunContext& c) { c.BarsPerPage = 10; }},
        {"abstain", 2, four,
         [](RunContext& c) {
             c.allowAbstain = true;
             c.abstainTotal = 3;
         }},
    };
}

class Golden : public ::testing::TestWithParam<GoldenCase> {};

TEST_P(Golden, DisplayChartMatchesThePicture)
{
    const GoldenCase& gc = GetParam();
    ChartRun r;
    r.setCounts(gc.graphType, gc.counts);
    if (gc.setup)
        gc.setup(r.ctx);
    FrmTChart& form = r.display();
    const QImage got =
        QImage::fromData(ChartPictureBytes(form.TChart(0), PictureFormat::PNG)).convertToFormat(QImage::Format_RGB32);
    ASSERT_FALSE(got.isNull());
    const QString path = GoldenPath(QString::fromLatin1(gc.name));
    if (qEnvironmentVariableIsSet("TALLIX_REGEN_GOLDEN")) {
        got.save(path, "PNG");
        GTEST_SKIP() << "wrote " << path.toStdString();
    }
    const QImage want(path);
    ASSERT_FALSE(want.isNull()) << "missing " << path.toStdString();
    EXPECT_LT(DifferingShare(got, want.convertToFormat(QImage::Format_RGB32)), 0.002) << gc.name;
}

INSTANTIATE_TEST_SUITE_P(ChartKinds, Golden, ::testing::ValuesIn(GoldenCases()),
                         [](const auto& info) { return std::string(info.param.name); });

TEST(DisplayChart, OnlyTheFlatDonutDropsEmptySlices)
{
    for (short gt : {0, 13, 14}) {
        ChartRun r;
        r.setCounts(gt, {6, 0, 9, 0});
        FrmTChart& form = r.display();
        const TSeries& s = form.TChart(0).SERIES(0);
        // startFrom 1 puts a blank point first; the flat donut loses it with the zeros.
        EXPECT_EQ(s.Count(), gt == 13 ? 2 : 5) << gt;
    }
}

TEST(DisplayChart, PieMarksReadLikeLetterAndPercent)
{
    ChartRun r;
    r.ctx.Quilmark_Display = 1;
    r.setCounts(0, {1, 3});
    FrmTChart& form = r.display();
    TSeries& s = form.TChart(0).SERIES(0);
    EXPECT_EQ(s.PointLabel(1), QStringLiteral("A) "));
    EXPECT_EQ(s.PointLabel(2), QStringLiteral("B) "));
    EXPECT_EQ(s.Marks.Style, 3);
}

TEST(DisplayChart, TwelveOptionsPageAtTenWithColoursCycling)
{
    ChartRun r;
    r.ctx.BarsPerPage = 10;
    r.setCounts(2, {3, 7, 2, 9, 4, 6, 1, 8, 5, 2, 7, 3});
    ::tallix::TChart& c = r.display().TChart(0);
    EXPECT_EQ(c.Page.MaxPointsPerPage, 10);
    EXPECT_EQ(c.Page.Count(), 2);
    EXPECT_TRUE(c.Page.ScaleLastPage);
    // Option 11 takes colour 1 again.
    EXPECT_EQ(c.SERIES(0).PointColor(11), OleColor(r.ctx.optionColours(1)));
    EXPECT_EQ(c.Axis.Bottom.Labels.Count(), 12);
    EXPECT_EQ(c.Axis.Bottom.Labels.Item(0).Text, QStringLiteral("1"));
}

TEST(DisplayChart, BarNumberMarksBothSideBySide)
{
    ChartRun r;
    r.ctx.showAsPercentOrNumber = 2;
    r.ctx.showAsBothStackedOrSide = 1;
    r.setCounts(2, {12, 2.5});
    TSeries& s = r.display().TChart(0).SERIES(0);
    EXPECT_EQ(s.PointLabel(0), QStringLiteral("12 /"));
    EXPECT_EQ(s.PointLabel(1), QStringLiteral("2.5 /"));
    EXPECT_EQ(s.Marks.Style, 3);
    EXPECT_FALSE(s.Marks.MultiLine);
}

TEST(DisplayChart, NumberMarksUseTheLocalesMarks)
{
    struct Row {
        const char* locale;
        const char* decimal;
        const char* thousand;
        const char* marks[4];  // 12.5, 1234, 1234567.25, 7
    };
    const Row rows[] = {
        {"en_US", ".", ",", {"12.5", "1,234", "1,234,567.25", "7"}},
        {"de_DE", ",", ".", {"12,5", "1 234", "1 234 567,25", "7"}},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.locale);
        ScopedSeparators machine(row.decimal, row.thousand);
        const QLocale before;
        QLocale::setDefault(QLocale(QString::fromLatin1(row.locale)));
        ChartRun r;
        r.ctx.showAsPercentOrNumber = 1;
        r.setCounts(2, {12.5, 1234, 1234567.25, 7});
        TSeries& s = r.display().TChart(0).SERIES(0);
        QLocale::setDefault(before);
        for (int i = 0; i < 4; ++i)
            EXPECT_EQ(s.PointLabel(i), QString::fromLatin1(row.marks[i])) << i;
    }
}

TEST(DisplayChart, AbstainCountOnlyInAVote)
{
    for (const char* action : {"TLXVOTE", "TLXRESHOW"}) {
        ChartRun r;
        r.ctx.arg1 = QString::fromLatin1(action);
        r.ctx.allowAbstain = true;
        r.ctx.abstainTotal = 2.5;
        r.setCounts(2, {1, 2});
        ::tallix::TChart& c = r.display().TChart(0);
        QStringList texts;
        for (int i = 0; i < c.Tools.Count(); ++i)
            if (c.Tools.Items(i).ToolType == tkAnnotation)
                texts << c.Tools.Items(i).asAnnotation().Text;
        if (QLatin1String(action) == QLatin1String("TLXVOTE"))
            EXPECT_EQ(texts, QStringList{QStringLiteral("Abstain Count = 2.5")});
        else
            EXPECT_TRUE(texts.isEmpty());
    }
}

TEST(DisplayChart, GrowingAnimationEndsOpaqueAndShown)
{
    ChartRun r;
    r.ctx.GraphPlotting = 1;
    r.ctx.GrowSpeed = 4;
    r.setCounts(2, {4, 9, 1});
    FrmTChart& form = r.display();
    EXPECT_FALSE(form.animating);
    EXPECT_GE(form.animatingCounter, 2);
    EXPECT_EQ(form.animatingStepSize, 25);   // 255 over 10 steps
    EXPECT_EQ(form.Alpha(), 255);
    EXPECT_TRUE(form.isVisible());
    EXPECT_TRUE(form.isEnabled());
    EXPECT_TRUE(form.TChart(0).SERIES(0).Marks.Visible);
}

TEST(DisplayChart, HiddenBuildStaysOffView)
{
    ChartRun r;
    r.ctx.GraphPlotting = 1;
    r.setCounts(0, {4, 9});
    DisplayChartArgs a;
    a.hidden = 1;
    FrmTChart& form = r.display(a);
    EXPECT_FALSE(form.isVisible());
    EXPECT_EQ(form.TChart(0).SERIES(0).Count(), 3);
}

TEST(DisplayChart, RebuildInPlaceNeitherHidesNorFadesNorMoves)
{
    ChartRun r;
    r.setCounts(2, {4, 9, 1});
    FrmTChart& form = r.display();
    form.ShowMe();
    form.TChart(0).Move(0, 0, 300 * kTwipsPerPixel, 200 * kTwipsPerPixel);
    r.ctx.optionCounts(1) = 20;
    DisplayChartArgs a;
    a.rebuild = 1;
    r.display(a);
    EXPECT_TRUE(form.isVisible());
    EXPECT_EQ(form.Alpha(), 255);
    EXPECT_EQ(form.TChart(0).width(), 300);
    EXPECT_EQ(form.TChart(0).SERIES(0).PointValue(1), 20);
    EXPECT_EQ(form.TChart(0).SeriesCount(), 1);
}

TEST(ChartAxes, AdjustAxesCentresBarsAndFontsScale)
{
    struct Row {
        short graphType, startFrom;
        double min, max;
        bool onBottom, automatic;
    };
    for (const Row& row : {Row{2, 1, 0.5, 4.5, true, true}, Row{2, 0, -0.5, 3.5, true, true},
                           Row{4, 1, 0.5, 4.5, false, false}}) {
        ChartRun r;
        r.ctx.startFrom = row.startFrom;
        r.setCounts(row.graphType, {1, 2, 3, 4});
        FrmTChart& form = r.display();
        AdjustAxes(r.ctx, form, 0, 0);
        const TAxis& a = row.onBottom ? form.TChart(0).Axis.Bottom : form.TChart(0).Axis.Left;
        EXPECT_DOUBLE_EQ(a.Minimum, row.min);
        EXPECT_DOUBLE_EQ(a.Maximum, row.max);
        EXPECT_EQ(a.Automatic, row.automatic);
        EXPECT_DOUBLE_EQ(a.Increment, 1);
    }
    ChartRun r;
    r.ctx.Font.Size = 20;
    r.setCounts(2, {1, 2});
    FrmTChart& form = r.display();
    AdjustChartFont(form.TChart(0), 0, 0.6f);
    EXPECT_EQ(form.TChart(0).SERIES(0).Marks.Font.Size, 12);
}

} // namespace

namespace tallix::testing {
namespace {

TEST(ChartLegend, TheFlagOfChartZeroShowsTheLegendStyledFromItsRecord)
{
    for (const bool flagged : {false, true}) {
        SCOPED_TRACE(flagged ? "legend flagged" : "no legend");
        ChartRun r;
        r.ctx.Font.Colour = 0x112233;
        r.ctx.Legends.redim(1);
        LegendRecord& rec = r.ctx.Legends(0);
        rec.Show = flagged ? 1 : 0;
        rec.Name = QStringLiteral("Liberation Serif");
        rec.Colour = 0x0000AA;
        rec.Size = 11;
        rec.Bold = true;
        rec.StrikeThrough = true;
        rec.Alignment = 3;
        rec.HidePen = true;
        r.setCounts(2, {3, 5});
        FrmTChart& form = r.display();
        ShowLegend(r.ctx);
        const ::tallix::TChart& c = form.TChart(0);
        EXPECT_EQ(c.Legend.Visible, flagged);
        // Beside a legend the marks take the first option's colour, else the font's.
        EXPECT_EQ(c.SERIES(0).Marks.Font.Color, OleColor(flagged ? r.ctx.optionColours(0) : 0x112233));
        if (!flagged)
            continue;
        EXPECT_EQ(c.Legend.Alignment, 3);
        EXPECT_FALSE(c.Legend.Symbol.DefaultPen);
        EXPECT_TRUE(c.Legend.Transparent);
        EXPECT_TRUE(c.Legend.Symbol.Squared);
        EXPECT_EQ(c.Legend.Font.Name, QStringLiteral("Liberation Serif"));
        EXPECT_EQ(c.Legend.Font.Color, OleColor(0x0000AA));
        EXPECT_EQ(c.Legend.Font.Size, 11);
        EXPECT_TRUE(c.Legend.Font.Bold);
        EXPECT_FALSE(c.Legend.Font.Italic);
        EXPECT_TRUE(c.Legend.Font.StrikeThrough);
    }
}

TEST(ChartLegend, GradientRunsFromTheGradientColourToTheSecondColour)
{
    for (const short g : {short(0), short(2), short(4)}) {
        ChartRun r;
        r.ctx.GradientColourShow = true;
        r.ctx.GradientColour = 0x00FF00;
        r.ctx.Font.Colour2 = 0x800000;
        r.setCounts(g, {3, 5});
        const TGradient& gr = r.display().TChart(0).SERIES(0).Gradient;
        EXPECT_TRUE(gr.Visible) << g;
        EXPECT_EQ(gr.StartColor, OleColor(0x00FF00)) << g;
        EXPECT_EQ(gr.EndColor, OleColor(0x800000)) << g;
    }
}

TEST(ChartLegend, ReshowEntriesComeFromTheRecordsOrTheFilters)
{
    struct Case {
        const char* action;
        short reshowLegend;
        int index;
        const char* expected;
    };
    const Case cases[] = {
        {"TLXVOTE", 0, 0, "B)"},           // a vote keeps the option label
        {"TLXRESHOW", 0, 0, "Staff"},      // the legend record's entry
        {"TLXRESHOW", 0, 1, "Live Votes"}, // past the records
        {"TLXRESHOW", 1, 0, "Staff or Yes"},
        {"TLXRESHOW", 1, 1, "All"},        // an empty filter
        {"TLXRESHOW", 1, 5, "All"},        // past the filters
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(std::string(c.action) + " " + std::to_string(c.reshowLegend) + " " + std::to_string(c.index));
        ChartRun r;
        r.ctx.arg1 = QString::fromLatin1(c.action);
        r.ctx.Legends.redim(0);
        r.ctx.Legends(0).Text = QStringLiteral("Staff");
        r.setCounts(2, {3, 5});
        FrmTChart& form = r.display();
        form.reshowLegend = c.reshowLegend;
        form.legendFilters = {QStringLiteral("Staff|^Yes^"), QString()};
        form.legendFiltersOr = true;
        QString text = QStringLiteral("B)");
        // The surface asks through this hook for every entry it draws.
        ASSERT_TRUE(form.TChart(0).legendTextHook);
        form.TChart(0).legendTextHook(c.index, text);
        EXPECT_EQ(text, QString::fromLatin1(c.expected));
    }
    EXPECT_EQ(FilterLegendText(QStringLiteral("^A^|^B^|C"), false), QStringLiteral("A and B and C"));
}

} // namespace
} // namespace tallix::testing
