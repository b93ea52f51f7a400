// A rating result: the items' bars in the result window, the spread of one item's marks,
// the presenter's keys on it, and the group on the slide.
#include "chart_fixture.h"

#include "charts/ui/rating_chart.h"

#include <gtest/gtest.h>

using namespace tallix;
using namespace tallix::testing;

namespace {

struct RatingRun : ChartRun {
    RatingRun()
    {
        ctx.GraphType = 7;
        ctx.optionCount = 5;
        ctx.NumberRankVotes = 2;
        ctx.HighlightRank = 1;
        ctx.HighlightColour = 0x00FF00;
        ctx.BarColour = 0x0000FF;
        rate(1, {"4", "5", "-1"});
        rate(2, {"1", "2", "0"});
    }
    void rate(short item, const QStringList& marks)
    {
        ctx.votes.redim(marks.size() - 1);
        for (int k = 0; k < marks.size(); ++k)
            ctx.votes(k) = marks[k];
        DisplayRatingChart(ctx, item);
    }
    FrmTChart& form() { return *charts->form(); }
};

TEST(RatingChart, EachItemIsABarAndTheBestIsHighlighted)
{
    RatingRun r;
    FrmTChart& f = r.form();
    ASSERT_TRUE(f.TChart.Exists(2));
    EXPECT_FLOAT_EQ(float(f.TChart(1).SERIES(0).PointValue(0)), 4.5f);
    EXPECT_FLOAT_EQ(float(f.TChart(2).SERIES(0).PointValue(0)), 1.5f);   // 0 is no mark from 1
    EXPECT_FALSE(f.TChart(0).Visible());                                  // the spread waits
    // Rows one under the other, inside the window.
    EXPECT_LT(f.TChart(1).geometry().bottom(), f.TChart(2).geometry().top());
    EXPECT_TRUE(QRect(0, 0, f.width(), f.height()).contains(f.TChart(2).geometry()));

    showRankResultsAll(r.ctx);
    EXPECT_EQ(f.TChart(1).SERIES(0).PointColor(0), OleColor(0x00FF00));
    EXPECT_EQ(f.TChart(2).SERIES(0).PointColor(0), OleColor(0x0000FF));
    EXPECT_EQ(r.ctx.ratingVoteStarted, 1);
}

TEST(RatingChart, KeysShowAnItemsSpreadAndStillMoveOnFromTheOverview)
{
    RatingRun r;
    FrmTChart& f = r.form();
    showRankResultsAll(r.ctx);
    constexpr int alt = 4;
    f.OnKeyDown(0, 'B', alt);   // the second item's spread
    EXPECT_TRUE(f.TChart(0).Visible());
    EXPECT_FALSE(f.TChart(1).Visible());
    EXPECT_FALSE(f.TChart(0).SERIES(0).Active);
    EXPECT_TRUE(f.TChart(0).SERIES(1).Active);
    EXPECT_EQ(f.PendingKey(), 0);

    f.OnKeyDown(0, ' ', 0);     // from a spread any key goes back to every item
    EXPECT_FALSE(f.TChart(0).Visible());
    EXPECT_TRUE(f.TChart(2).Visible());
    EXPECT_EQ(f.PendingKey(), 0);

    f.OnKeyDown(0, ' ', 0);     // from the overview the clicker moves on
    EXPECT_EQ(f.PendingKey(), ' ');

    f.ClearPendingKey();
    f.OnMouseDown(1, 2, 0, 5, 5);   // a right click on a bar shows its item's spread
    EXPECT_TRUE(f.TChart(0).Visible());
    EXPECT_TRUE(f.TChart(0).SERIES(0).Active);
}

TEST(RatingChart, TheBarsLandOnTheSlideAsOneGroupAndEachItemAlsoAlone)
{
    RatingRun r;
    r.shapes()->AddShape(1, 0, 0, 10, 10)->SetName(QStringLiteral("tallix chart sample-BAK"));
    showRankResultsAll(r.ctx);
    GraphtoSlide(r.ctx, -1);
    host::Shape* group = r.shapes()->Item(QStringLiteral("tallix chart ratings"));
    ASSERT_EQ(group->Kind(), host::ShapeKind::Group);
    EXPECT_TRUE(group->Visible());
    ASSERT_EQ(group->GroupItems()->Count(), 2);
    EXPECT_EQ(group->GroupItems()->Item(1)->Name(), "tallix ratings 2");
    EXPECT_EQ(group->GroupItems()->Item(2)->Name(), "tallix ratings 3");
    for (const char* alone : {"tallix chart A", "tallix chart B"}) {
        host::Shape* pic = r.shapes()->Item(QString::fromLatin1(alone));
        EXPECT_EQ(pic->Kind(), host::ShapeKind::Picture) << alone;
        EXPECT_FALSE(pic->Visible()) << alone;
    }
    const QStringList names = r.shapeNames();
    EXPECT_TRUE(names.contains(QStringLiteral("tallix chart sample-BAK")));
    EXPECT_EQ(names.filter(QStringLiteral("tallix ratings")).size(), 0);   // only inside the group
    EXPECT_EQ(r.ctx.oPres->GetSlides()->Item(1)->GetTags()->Item("RankVote"), "1");
}

} // namespace
