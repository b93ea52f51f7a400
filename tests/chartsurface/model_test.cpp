// Model operations of the chart surface: series classes, points, sorting, paging, null
// points, number pictures and tools.
#include "chartsurface/chart_model.h"
#include "foundation/format_float.h"
#include "foundation/vb_error.h"

#include <gtest/gtest.h>

using namespace tallix;

namespace {

long ErrorNumberOf(const std::function<void()>& f)
{
    try {
        f();
    } catch (const VbError& e) {
        return e.number();
    }
    return 0;
}

std::vector<QString> Labels(const TSeries& s)
{
    std::vector<QString> out;
    for (const auto& p : s.Points())
        out.push_back(p.Label);
    return out;
}

} // namespace

TEST(ChartModel, SeriesClassesAndTheirViews)
{
    TChartModel m;
    for (int code : {1, 2, 5, 25})
        EXPECT_EQ(m.SERIES(m.AddSeries(code)).SeriesClassCode(), code);
    EXPECT_EQ(m.SeriesCount(), 4);
    EXPECT_NO_THROW(m.SERIES(0).asBar());
    EXPECT_NO_THROW(m.SERIES(1).asHorizBar());
    EXPECT_NO_THROW(m.SERIES(3).asDonut());
    EXPECT_EQ(ErrorNumberOf([&] { m.SERIES(2).asBar(); }), ErrNo::ObjectVariableNotSet);
    EXPECT_EQ(ErrorNumberOf([&] { m.AddSeries(3); }), ErrNo::InvalidProcedureCall);
    EXPECT_EQ(ErrorNumberOf([&] { m.SERIES(4); }), ErrNo::SubscriptOutOfRange);
    m.RemoveSeries(1);
    EXPECT_EQ(m.SERIES(1).SeriesClassCode(), 5);
    m.RemoveAllSeries();
    EXPECT_EQ(m.SeriesCount(), 0);
}

TEST(ChartModel, PointsAddNullDeleteAndAccess)
{
    TChartModel m;
    TSeries& s = m.SERIES(m.AddSeries(scBar));
    s.Add(5, "a", Rgb(1, 2, 3));
    s.AddNull();
    s.Add(7);
    ASSERT_EQ(s.Count(), 3);
    EXPECT_TRUE(s.IsNull(1));
    EXPECT_EQ(s.PointValue(1), 0);
    EXPECT_EQ(s.PointColor(2), clNone);
    EXPECT_EQ(s.XValues.Value(2), 2); // positions are sequence numbers
    s.PointLabel(0) += ") ";
    EXPECT_EQ(s.PointLabel(0), "a) ");
    s.PointValue(2) = 9;
    EXPECT_EQ(s.YValues.Value(2), 9);
    s.Delete(1);
    ASSERT_EQ(s.Count(), 2);
    EXPECT_EQ(s.PointValue(1), 9);
    EXPECT_EQ(s.XValues.Value(1), 1) << "positions close up after a delete";
    for (auto access : std::vector<std::function<void()>>{[&] { s.PointValue(2); }, [&] { s.PointLabel(-1); },
                                                           [&] { s.PointColor(5); }, [&] { s.Delete(2); }})
        EXPECT_EQ(ErrorNumberOf(access), ErrNo::SubscriptOutOfRange);
}

TEST(ChartModel, HorizontalBarsHoldValuesOnX)
{
    TChartModel m;
    TSeries& s = m.SERIES(m.AddSeries(scHorizBar));
    s.Add(4);
    s.Add(9);
    EXPECT_EQ(s.XValues.Value(1), 9);
    EXPECT_EQ(s.YValues.Value(1), 1);
    EXPECT_EQ(&s.MandatoryValues(), &s.XValues);
}

TEST(ChartModel, SortByLabelsBothDirections)
{
    struct Case {
        int order;
        std::vector<QString> expected;
    };
    for (const Case& c : {Case{1, {"a", "B", "c", "c"}}, Case{2, {"c", "c", "B", "a"}}, Case{0, {"c", "a", "B", "c"}}}) {
        SCOPED_TRACE(c.order);
        TChartModel m;
        TSeries& s = m.SERIES(m.AddSeries(scBar));
        s.Add(1, "c");
        s.Add(2, "a");
        s.Add(3, "B");
        s.Add(4, "c");
        s.SortByLabels(c.order);
        EXPECT_EQ(Labels(s), c.expected);
        for (int i = 0; i < s.Count(); ++i)
            EXPECT_EQ(s.XValues.Value(i), i) << "drawn in their new order";
        if (c.order == 1) {
            EXPECT_EQ(s.PointValue(2), 1) << "equal labels keep their order";
        }
    }
}

TEST(ChartModel, SortByLabelsComparesNumbersAsNumbers)
{
    TChartModel m;
    TSeries& s = m.SERIES(m.AddSeries(scPie));
    for (const char* l : {"10) ", "2) ", "1) ", "B) ", "a) ", "02) x"})
        s.Add(1, l);
    s.SortByLabels(1);
    EXPECT_EQ(Labels(s), (std::vector<QString>{"1) ", "2) ", "02) x", "10) ", "a) ", "B) "}));
}

TEST(ChartModel, ValueListOrderSortAndFillSequence)
{
    TChartModel m;
    TSeries& s = m.SERIES(m.AddSeries(scHorizBar));
    for (double v : {3.0, 8.0, 1.0, 5.0})
        s.Add(v);
    s.XValues.Order = 2;
    s.XValues.Sort();
    s.YValues.FillSequence();
    EXPECT_EQ(s.PointValue(0), 8);
    EXPECT_EQ(s.PointValue(3), 1);
    EXPECT_EQ(s.YValues.Value(3), 3);
    s.XValues.Order = 0;
    s.XValues.Sort(); // no order: nothing moves
    EXPECT_EQ(s.PointValue(0), 8);
}

TEST(ChartModel, PageCount)
{
    struct Case {
        int points, perPage, pages;
    };
    for (const Case& c : {Case{12, 10, 2}, Case{10, 10, 1}, Case{21, 10, 3}, Case{5, 0, 1}, Case{4, 99, 1}}) {
        TChartModel m;
        TSeries& s = m.SERIES(m.AddSeries(scBar));
        for (int i = 0; i < c.points; ++i)
            s.Add(i + 1);
        m.Page.MaxPointsPerPage = c.perPage;
        EXPECT_EQ(m.Page.Count(), c.pages) << c.points << " points at " << c.perPage;
    }
}

TEST(ChartModel, ToolsOfBothKinds)
{
    TChartModel m;
    EXPECT_EQ(m.Tools.Add(tkAnnotation), 0);
    EXPECT_EQ(m.Tools.Add(tkSeriesAnimation), 1);
    EXPECT_EQ(m.Tools.Items(1).ToolType, 14);
    m.Tools.Items(0).asAnnotation().Text = "Abstain Count = 3";
    EXPECT_EQ(ErrorNumberOf([&] { m.Tools.Items(0).asSeriesAnimation(); }), ErrNo::ObjectVariableNotSet);
    EXPECT_EQ(ErrorNumberOf([&] { m.Tools.Add(11); }), ErrNo::InvalidProcedureCall);
    EXPECT_EQ(ErrorNumberOf([&] { m.Tools.Items(2); }), ErrNo::SubscriptOutOfRange);
    m.Tools.Clear();
    EXPECT_EQ(m.Tools.Count(), 0);
}

TEST(ChartModel, AxisLabelsAndCustomProperties)
{
    TChartModel m;
    m.Axis.Bottom.Labels.Add(1, "1");
    m.Axis.Bottom.Labels.Add(2, "2");
    m.Axis.Bottom.Labels.Item(1).Font.Size = 20;
    EXPECT_EQ(m.Axis.Bottom.Labels.Count(), 2);
    EXPECT_EQ(ErrorNumberOf([&] { m.Axis.Bottom.Labels.Item(2); }), ErrNo::SubscriptOutOfRange);
    m.Axis.Bottom.Labels.Clear();
    EXPECT_EQ(m.Axis.Bottom.Labels.Count(), 0);

    TSeries& pie = m.SERIES(m.AddSeries(scPie));
    EXPECT_FALSE(pie.XRadius.custom);
    pie.XRadius = 120;
    EXPECT_TRUE(pie.XRadius.custom);
    EXPECT_EQ(int(pie.XRadius), 120);
}

TEST(ChartModel, BackImageThatCannotBeReadRaises)
{
    TChartModel m;
    EXPECT_EQ(ErrorNumberOf([&] { m.Panel.BackImageLoad("/no/such/picture.bmp"); }), ErrNo::FileNotFound);
    EXPECT_TRUE(m.Panel.backImage.isNull());
}

TEST(FormatFloat, Pictures)
{
    struct Case {
        const char* picture;
        double value;
        const char* expected;
    };
    const Case cases[] = {
        {"0%", 34.4, "34%"},          {"0%", 34.5, "35%"},          {"0.0%", 33.3333, "33.3%"},
        {"0.00%", 0, "0.00%"},        {"##0.## %", 12.5, "12.5 %"}, {"##0.## %", 12, "12 %"},
        {"#,##0.00", 1234.5, "1,234.50"}, {"#,##0.###", 0, "0"},    {"#,##0", 1234567, "1,234,567"},
        {"0", -3.2, "-3"},            {"0", -0.2, "0"},             {"##0", 7, "7"},
        {"#,##0.00", 0.456, "0.46"},  {"", 2.5, "2.5"},
    };
    for (const Case& c : cases)
        EXPECT_EQ(FormatFloat(c.picture, c.value), QString::fromUtf8(c.expected)) << c.picture << " " << c.value;
    EXPECT_EQ(FormatFloat("#,##0.0", 1234.5, ',', '.'), "1.234,5");
}
