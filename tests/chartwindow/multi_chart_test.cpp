// The result of a series vote: its three views on the result window, and on the slide.
#include "chart_fixture.h"

#include "charts/ui/multi_chart.h"
#include "vote/series_runners.h"

#include <gtest/gtest.h>

using namespace tallix;
using namespace tallix::testing;

namespace {

// Four keypads, three selections; nobody answered in the third.
struct SeriesRun : ChartRun {
    explicit SeriesRun(short graphType = 2, short iterations = 3)
    {
        ctx.vType = 2;
        ctx.GraphType = graphType;
        ctx.optionCount = 4;
        ctx.Iterations = iterations;
        ctx.keypadUniverse = 4;
        ctx.controllerVoteType = QStringLiteral("9");
        ctx.votes.redim(4, QStringLiteral("-1"));
        ResetSeriesColours(ctx);
        ctx.seriesVotes.redim(iterations, 4, -1.0f);
        const float picks[2][4] = {{1, 1, 2, -1}, {2, -1, -1, -1}};
        for (int t = 0; t < std::min<int>(iterations, 2); ++t)
            for (int k = 0; k < 4; ++k)
                ctx.seriesVotes(t, k) = picks[t][k];
    }
    FrmTChart& show(short displayBy = 0)
    {
        ctx.DisplayBy = displayBy;
        DisplayMultiChart(ctx, displayBy, ctx.Iterations, false);
        return *charts->form();
    }
    static QList<double> values(FrmTChart& f, int element, int series = 0)
    {
        QList<double> out;
        const TSeries& s = f.TChart(element).SERIES(series);
        for (int i = 0; i < s.Count(); ++i)
            out << const_cast<TSeries&>(s).PointValue(i);
        return out;
    }
};

TEST(MultiChart, EachElementShowsItsOwnValues)
{
    SeriesRun r;
    FrmTChart& f = r.show();
    ASSERT_EQ(f.TChart.UBound(), 4);   // totals, side by side, one per selection
    EXPECT_EQ(SeriesRun::values(f, 0), QList<double>({2, 2, 0, 0}));
    ASSERT_EQ(f.TChart(1).SeriesCount(), 3);
    // Side by side, each selection in percent of its own answers; an empty one is all zeros.
    const QList<double> first = SeriesRun::values(f, 1, 0);
    EXPECT_NEAR(first[0], 200.0 / 3, 1e-4);
    EXPECT_NEAR(first[1], 100.0 / 3, 1e-4);
    EXPECT_EQ(SeriesRun::values(f, 1, 1), QList<double>({0, 100, 0, 0}));
    EXPECT_EQ(SeriesRun::values(f, 1, 2), QList<double>({0, 0, 0, 0}));
    EXPECT_EQ(SeriesRun::values(f, 2), QList<double>({2, 1, 0, 0}));
    EXPECT_EQ(SeriesRun::values(f, 4), QList<double>({0, 0, 0, 0}));

    r.ctx.showAsPercentOrNumber = 1;   // a chart of numbers shows the counts side by side
    FrmTChart& counts = r.show();
    EXPECT_EQ(SeriesRun::values(counts, 1, 0), QList<double>({2, 1, 0, 0}));

    SeriesRun all;
    all.ctx.SeriesPercentVsTotalKpads = true;   // of the three keypads that answered at all
    FrmTChart& ofAll = all.show();
    EXPECT_EQ(SeriesRun::values(ofAll, 0), QList<double>({67, 67, 0, 0}));
    EXPECT_EQ(SeriesRun::values(ofAll, 2), QList<double>({67, 33, 0, 0}));
}

TEST(MultiChart, TheSelectionsShareOneScaleAndTheTotalsKeepTheirOwn)
{
    SeriesRun r;
    FrmTChart& f = r.show();
    for (int c = 2; c <= 4; ++c) {
        const TAxis& value = f.TChart(c).Axis.Left;
        EXPECT_FALSE(value.Automatic) << c;
        EXPECT_EQ(value.Maximum, 3.0) << c;   // the highest count, 2, and half again for the marks
    }
    EXPECT_TRUE(f.TChart(0).Axis.Left.Automatic || f.TChart(0).Axis.Left.AutomaticMaximum);

    // Nobody answered: no scale to fix, and nothing fails.
    SeriesRun empty;
    empty.ctx.seriesVotes.redim(3, 4, -1.0f);
    FrmTChart& none = empty.show();
    EXPECT_TRUE(none.TChart(2).Axis.Left.Automatic || none.TChart(2).Axis.Left.AutomaticMaximum);
    EXPECT_EQ(SeriesRun::values(none, 1, 0), QList<double>({0, 0, 0, 0}));
}

struct LayoutCase {
    short graphType;
    bool stacked;
};

class MultiChartLayout : public ::testing::TestWithParam<LayoutCase> {};

TEST_P(MultiChartLayout, SelectionsShareTheWindowAndTheViewIsShown)
{
    SeriesRun r(GetParam().graphType);
    for (short displayBy : {0, 1, 2}) {
        FrmTChart& f = r.show(displayBy);
        const QRect whole(0, 0, f.width(), f.height());
        EXPECT_EQ(f.TChart(0).geometry(), whole);
        EXPECT_EQ(f.TChart(1).geometry(), whole);
        QRect covered;
        for (int t = 0; t < 3; ++t) {
            const QRect g = f.TChart(2 + t).geometry();
            EXPECT_EQ(GetParam().stacked ? g.width() : g.height(), GetParam().stacked ? whole.width() : whole.height());
            EXPECT_NEAR(GetParam().stacked ? g.height() : g.width(),
                        (GetParam().stacked ? whole.height() : whole.width()) / 3.0, 1.0);
            if (t > 0) {
                EXPECT_FALSE(g.intersects(f.TChart(1 + t).geometry())) << t;
            }
            covered = covered.united(g);
        }
        EXPECT_EQ(covered, whole);
        EXPECT_TRUE(f.isVisible());
        EXPECT_EQ(f.TChart(0).Visible(), displayBy == 0);
        EXPECT_EQ(f.TChart(1).Visible(), displayBy == 1);
        for (int c = 2; c <= 4; ++c)
            EXPECT_EQ(f.TChart(c).Visible(), displayBy == 2) << c;
        // A series never pages.
        EXPECT_EQ(f.TChart(0).Page.MaxPointsPerPage, 99);
    }
}

INSTANTIATE_TEST_SUITE_P(Bars, MultiChartLayout,
                         ::testing::Values(LayoutCase{2, false}, LayoutCase{3, false}, LayoutCase{4, true},
                                           LayoutCase{5, true}));

TEST(MultiChart, TheViewLandsOnTheSlideAndTheOthersBesideItHidden)
{
    for (short displayBy : {0, 1, 2}) {
        SeriesRun r;
        r.show(displayBy);
        GraphtoSlide(r.ctx, -1);
        host::Shapes* shapes = r.shapes();
        EXPECT_EQ(shapes->Item(QStringLiteral("tallix chart 0"))->Visible(), displayBy == 0);
        EXPECT_EQ(shapes->Item(QStringLiteral("tallix chart 1"))->Visible(), displayBy == 1);
        host::Shape* group = shapes->Item(QStringLiteral("tallix chart 2"));
        ASSERT_EQ(group->Kind(), host::ShapeKind::Group);
        EXPECT_EQ(group->Visible(), displayBy == 2);
        ASSERT_EQ(group->GroupItems()->Count(), 3);
        for (int n = 1; n <= 3; ++n) {
            host::Shape* pic = group->GroupItems()->Item(QStringLiteral("tallix iteration %1").arg(n));
            EXPECT_EQ(pic->Visible(), displayBy == 2) << n;
        }
        EXPECT_EQ(r.ctx.oPres->GetSlides()->Item(1)->GetTags()->Item("SequenceVote"), "1");
    }
}

TEST(MultiChart, OneSelectionIsAGroupOfOneAndARerunReplacesIt)
{
    SeriesRun r(2, 1);
    r.show(2);
    GraphtoSlide(r.ctx, -1);
    // Set aside by the slide editor and by a reshow: a rerun keeps them.
    r.shapes()->AddShape(1, 0, 0, 10, 10)->SetName(QStringLiteral("tallix chart 0 sample-BAK"));
    r.shapes()->AddShape(1, 0, 0, 10, 10)->SetName(QStringLiteral("reshow 1 tallix chart"));
    r.show(2);
    GraphtoSlide(r.ctx, -1);
    const QStringList names = r.shapeNames();
    EXPECT_TRUE(names.contains(QStringLiteral("tallix chart 0 sample-BAK")));
    EXPECT_TRUE(names.contains(QStringLiteral("reshow 1 tallix chart")));
    EXPECT_EQ(names.count(QStringLiteral("tallix chart 2")), 1);
    EXPECT_EQ(names.count(QStringLiteral("tallix chart 0")), 1);
    EXPECT_FALSE(names.contains(QStringLiteral("tallix iteration 1")));   // only inside the group
    host::Shape* group = r.shapes()->Item(QStringLiteral("tallix chart 2"));
    ASSERT_EQ(group->GroupItems()->Count(), 1);
    EXPECT_TRUE(group->GroupItems()->Item(1)->Visible());
}

} // namespace
