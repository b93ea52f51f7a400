// Rating and text votes in-process: the items one after the other with their markers, the
// object tables written at the end, and the counting behind both.

#include "live_fixture.h"

#include "charts/collation.h"
#include "charts/rank_markers.h"
#include "foundation/host.h"
#include "vote/rating_runners.h"
#include "vote/text_runners.h"
#include "vote/vote_close.h"
#include "vote/vote_driver.h"
#include "vote/votes_cast_boxes.h"

#include <deque>
#include <set>

using namespace tallix;
using tallix::testing::LiveVoteTest;

namespace {

class RatingTest : public LiveVoteTest {
protected:
    RatingTest()
    {
        ctx.GraphType = 7;
        ctx.optionCount = 5;
        ctx.NumberRankVotes = 3;
        ctx.ShowGraphs = true;
        ctx.MarkerCharacter = 232;
        ctx.MarkerColour = 0x0000FF;
        // Hidden until their item opens, as the deck tool makes them.
        for (int i = 1; i <= 3; ++i) {
            host::Shape* m = slide()->GetShapes()->AddTextbox(10, 40.0 * i, 30, 30);
            m->SetName(QStringLiteral("tallix rank marker 0%1").arg(i));
            m->SetVisible(false);
        }
    }
    host::Slide* slide() { return ctx.oPres->GetSlides()->Item(2); }
    host::Shape* marker(int n)
    {
        host::Shapes* shapes = slide()->GetShapes();
        for (int i = 1; i <= shapes->Count(); ++i)
            if (shapes->Item(i)->Name() == QStringLiteral("tallix rank marker 0%1").arg(n))
                return shapes->Item(i);
        return nullptr;
    }

    // Presses the keys one every few pumps, on whichever votes-cast window is loaded.
    void pressInTurn(std::deque<int> keys)
    {
        run.t.pump.setHook([this, keys]() mutable {
            if (host::Shape* m = ctx.rankItemIndex < 3 ? marker(ctx.rankItemIndex + 1) : nullptr; m && m->Visible())
                shownWhileOpen.insert(ctx.rankItemIndex);
            // Only into an item that waits for votes: never while one opens or closes.
            if (run.t.pump.pumps() % 5 == 0 && !keys.empty() && itemWaiting()) {
                const int key = keys.front();
                keys.pop_front();
                ctx.vCast->KeyInput(key);
            }
        });
    }
    // As the program starts a vote: the window dressed, then the first item opened.
    bool runVote()
    {
        LoadVotesCastBoxes(ctx);
        PrepareVotesCastWindow(ctx);
        short item = 0;
        return endsProcess([&] { execVote(ctx, item); });
    }
    bool itemWaiting() const
    {
        return ctx.vCast && ctx.voteEnded == 0 &&
               !QStringList({"", "0", "Please Wait"}).contains(ctx.vCast->CounterCaption());
    }
    QStringList savedLines()
    {
        QStringList lines = slide()->GetTags()->Item("TLXVOTES").split("\r\n");
        lines.removeAll(QString());
        return lines;
    }

    std::set<int> shownWhileOpen;
};

TEST_F(RatingTest, EachItemIsItsOwnVoteWithItsMarkerAndItsLine)
{
    pressInTurn({'3', '4', ' ', '1', ' ', '5', '5', ' '});
    EXPECT_TRUE(runVote());
    const QStringList lines = savedLines();
    ASSERT_EQ(lines.size(), 3);
    const char* const expected[] = {"3;4;-;", "1;-;-;", "5;5;-;"};
    for (int i = 0; i < 3; ++i) {
        EXPECT_TRUE(lines[i].section(',', 2, 2).startsWith(expected[i])) << lines[i].toStdString();
        EXPECT_EQ(lines[i].section(',', 3), QStringLiteral("%1of3").arg(i + 1));
    }
    // Each marker stood while its item was open and is hidden after it.
    EXPECT_EQ(shownWhileOpen, (std::set<int>{0, 1, 2}));
    for (int n = 1; n <= 3; ++n) {
        EXPECT_FALSE(marker(n)->Visible()) << n;
        const host::Font f = marker(n)->GetTextFrame()->GetFont();
        EXPECT_EQ(f.Name, "Wingdings");
        EXPECT_EQ(f.Size, 26);
        EXPECT_EQ(f.Color, 0x0000FF);
        EXPECT_EQ(marker(n)->GetTextFrame()->Text(), QString(QChar(232)));
    }
    // The last item's end places every item and waits for the presenter.
    EXPECT_EQ(result.placed, (std::vector<short>{1, 2, 3, -1}));
    EXPECT_EQ(ReadVoteEnd(ctx), "Vote finished");
    EXPECT_EQ(link.sent.count("StartVote"), 0);   // the keyboard opens nothing at a base
}

TEST_F(RatingTest, CountedDownItemsCloseWhenTheirTimeIsUp)
{
    ctx.vType = 1;
    ctx.TimeLeft = 2;
    ctx.NumberRankVotes = 2;
    bool voted = false;
    run.t.pump.setHook([&] {
        // Once, while the first item is open: its marker says so.
        if (!voted && ctx.vCast && marker(1)->Visible()) {
            voted = true;
            ctx.vCast->KeyInput('2');
        }
    });
    const double start = run.t.clock.secondsSinceMidnight();
    EXPECT_TRUE(runVote());
    EXPECT_GE(run.t.clock.secondsSinceMidnight() - start, 4.0);
    const QStringList lines = savedLines();
    ASSERT_EQ(lines.size(), 2);
    EXPECT_TRUE(lines[0].section(',', 2, 2).startsWith("2;")) << lines[0].toStdString();
    EXPECT_EQ(lines[1].section(',', 3), "2of2");
}

TEST_F(RatingTest, ASlideWithoutMarkersOrWithAMarkerWithoutTextRunsAlike)
{
    for (int n = 1; n <= 3; ++n)
        marker(n)->Delete();
    // A shape of the marker's name that holds no text is passed over as a missing one.
    slide()->GetShapes()->AddTable(1, 1, 0, 0, 20, 20)->SetName("tallix rank marker 02");
    ctx.NumberRankVotes = 2;
    pressInTurn({'1', ' ', '2', ' '});
    EXPECT_TRUE(runVote());
    EXPECT_EQ(savedLines().size(), 2);
    EXPECT_TRUE(run.errLog().isEmpty());
}

TEST(RatingItem, AveragesOnlyTheMarksOnOffer)
{
    tallix::testing::TestRun run;
    RunContext& ctx = run.ctx;
    ctx.optionCount = 5;
    ctx.NumberRankVotes = 2;
    struct Case {
        short startFrom;
        QStringList votes;
        float average;
        std::vector<float> spread;   // marks 1..5 (or 0..4)
    };
    const Case cases[] = {
        {1, {"4", "2", "-1", "-1"}, 3.0f, {0, 1, 0, 1, 0}},
        {1, {"0", "6", "5", "-2"}, 5.0f, {0, 0, 0, 0, 1}},   // 0 and 6 are no marks here
        {1, {"-1", "-1"}, 0.0f, {0, 0, 0, 0, 0}},             // nobody rated it
        {0, {"0", "4", "5"}, 2.0f, {1, 0, 0, 0, 1}},         // from 0 the top mark is 4
    };
    for (const Case& c : cases) {
        ctx.startFrom = c.startFrom;
        ctx.votes.redim(c.votes.size() - 1);
        for (int k = 0; k < c.votes.size(); ++k)
            ctx.votes(k) = c.votes[k];
        // Counted twice, as a revote counts it: the spread does not double.
        CollateRatingItem(ctx, 2, 0);
        EXPECT_EQ(CollateRatingItem(ctx, 2, 0), c.average) << c.votes.join(' ').toStdString();
        EXPECT_EQ(ctx.ratingAverages(1), c.average);
        for (int m = 0; m < 5; ++m)
            EXPECT_EQ(ctx.ratingDistribution(m, 1), c.spread[size_t(m)]) << "mark index " << m;
    }
}

TEST(RankMarker, GlyphsAreWindows1252Codes)
{
    EXPECT_EQ(MarkerGlyph(232), QString(QChar(0xE8)));
    EXPECT_EQ(MarkerGlyph(0x80), QString(QChar(0x20AC)));
    EXPECT_EQ(MarkerGlyph(0x9F), QString(QChar(0x0178)));
    EXPECT_EQ(MarkerGlyph(0), QString());
    EXPECT_EQ(MarkerGlyph(300), QString());
}

class ObjectVoteTest : public LiveVoteTest {
protected:
    ObjectVoteTest()
    {
        ctx.GraphType = 6;
        ctx.optionCount = 3;
        ctx.ShowGraphs = true;
        host::Shapes* shapes = ctx.oPres->GetSlides()->Item(2)->GetShapes();
        for (int i = 1; i <= 3; ++i) {
            if (i == 2)
                continue;   // option 2 has lost its table
            host::Shape* t = shapes->AddTable(1, 2, 400, 40.0 * i, 200, 30);
            t->SetName(QStringLiteral("tlx_object%1").arg(i));
            t->SetVisible(false);
        }
    }
    host::Shape* table(int i)
    {
        return ctx.oPres->GetSlides()->Item(2)->GetShapes()->Item(QStringLiteral("tlx_object%1").arg(i));
    }
};

TEST_F(ObjectVoteTest, EachOptionsResultGoesIntoItsOwnTableAndTheRunEndsByItself)
{
    ctx.showAsPercentOrNumber = 2;
    ctx.PercentDP = 1;
    run.t.pump.setHook([this] {
        static const int keys[] = {'1', '1', '3', '1', '1', '3', ' '};
        const qint64 n = run.t.pump.pumps() / 5 - 1;
        if (run.t.pump.pumps() % 5 == 0 && n >= 0 && n < 7)
            vcast().KeyInput(keys[n]);
    });
    EXPECT_TRUE(endsProcess([&] { DoCountUpTextVote(ctx, 0); }));
    EXPECT_EQ(table(1)->GetTable()->Cell(1, 2)->Text(), "(4) 66.7%");
    EXPECT_EQ(table(3)->GetTable()->Cell(1, 2)->Text(), "(2) 33.3%");
    EXPECT_TRUE(table(1)->Visible());
    EXPECT_TRUE(table(3)->Visible());
    EXPECT_EQ(ReadVoteEnd(ctx), "Vote finished");
    EXPECT_TRUE(result.placed.empty());   // no chart
    EXPECT_EQ(charts.charts, 0);
}

} // namespace
