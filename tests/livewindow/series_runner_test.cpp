// Series votes in-process: the selections one after the other in the votes-cast window,
// their saved lines, and the counting rules around them.

#include "live_fixture.h"

#include "charts/collation.h"
#include "foundation/host.h"
#include "vote/series_runners.h"
#include "vote/vote_close.h"
#include "vote/votes_cast_boxes.h"

#include <deque>
#include <set>

using namespace tallix;
using tallix::testing::LiveVoteTest;

namespace {

class SeriesTest : public LiveVoteTest {
protected:
    SeriesTest()
    {
        ctx.vType = 2;
        ctx.GraphType = 2;
        ctx.Iterations = 3;
        ctx.allowAbstain = true;
    }

    // Presses the keys one every few pumps, noting the window's caption as it goes.
    void pressInTurn(std::deque<int> keys)
    {
        run.t.pump.setHook([this, keys]() mutable {
            captions.insert(view().caption);
            if (run.t.pump.pumps() % 5 == 0 && !keys.empty()) {
                const int key = keys.front();
                keys.pop_front();
                vcast().KeyInput(key);
            }
        });
    }

    QStringList savedLines() const
    {
        QStringList lines = ctx.oPres->GetSlides()->Item(2)->GetTags()->Item("TLXVOTES").split("\r\n");
        lines.removeAll(QString());
        return lines;
    }
    static QStringList tokens(const QString& line) { return line.section(',', 2, 2).split(';'); }

    std::set<QString> captions;
};

TEST_F(SeriesTest, KeyboardSelectionsAreSavedOneLineEachAfterTheEarlierText)
{
    const QString earlier = "01 Nov 2026,10:00:00,1;2;3;\r\n";
    ctx.oPres->GetSlides()->Item(2)->GetTags()->Add("TLXVOTES", earlier);
    LoadVotesCastBoxes(ctx);
    PrepareVotesCastWindow(ctx);
    pressInTurn({'3', '2', 'z', ' ', '1', '1', ' ', 'g'});
    EXPECT_TRUE(endsProcess([&] { DoSeriesGraphVote(ctx); }));

    const QString all = ctx.oPres->GetSlides()->Item(2)->GetTags()->Item("TLXVOTES");
    EXPECT_TRUE(all.startsWith(earlier));
    EXPECT_TRUE(all.endsWith("3of3\r\n"));
    const QStringList lines = savedLines();
    ASSERT_EQ(lines.size(), 4);
    EXPECT_EQ(lines[1].section(',', 3), "1of3");
    EXPECT_EQ(lines[2].section(',', 3), "2of3");
    // One token per keypad, each ending in ";".
    EXPECT_EQ(tokens(lines[1]), QStringList({"3", "2", "X", "-", "-", "-", "-", "-", "-", "-", ""}));
    // Each selection's keys start again at the first keypad.
    EXPECT_EQ(tokens(lines[2]).mid(0, 3), QStringList({"1", "1", "-"}));
    const QStringList filled = tokens(lines[3]);
    ASSERT_EQ(filled.size(), 11);
    for (int k = 0; k < 10; ++k)
        EXPECT_TRUE(QStringList({"1", "2", "3", "4"}).contains(filled[k])) << "keypad " << k + 1;

    EXPECT_TRUE(captions.count("1st selection") && captions.count("2nd selection") && captions.count("3rd selection"));
    EXPECT_EQ(charts.charts, 1);
    EXPECT_EQ(result.placed, std::vector<short>{-1});
    EXPECT_TRUE(sent("EndVote"));   // the bases stop before the result shows
}

TEST_F(SeriesTest, AnExclusiveSeriesTakesBackARepeatedChoice)
{
    ctx.Exclusive = true;
    ctx.Iterations = 2;
    PrepareVotesCastWindow(ctx);
    // Keypad 1 picks 2 twice; keypad 2 picks 3 in the second selection only.
    pressInTurn({'2', ' ', '2', '3', ' '});
    EXPECT_TRUE(endsProcess([&] { DoSeriesGraphVote(ctx); }));
    const QStringList lines = savedLines();
    ASSERT_EQ(lines.size(), 2);
    EXPECT_EQ(tokens(lines[0]).mid(0, 2), QStringList({"2", "-"}));
    EXPECT_EQ(tokens(lines[1]).mid(0, 2), QStringList({"-", "3"}));
}

TEST_F(SeriesTest, ACountedDownSeriesEndsEachSelectionWhenItsTimeIsUp)
{
    ctx.SeriesVType = 1;
    ctx.TimeLeft = 2;
    PrepareVotesCastWindow(ctx);
    std::set<int> votedIn;
    run.t.pump.setHook([&] {
        // One vote early in each selection, from the first keypad.
        if (!votedIn.count(ctx.currentIteration) && run.t.pump.pumps() % 7 == 0) {
            votedIn.insert(ctx.currentIteration);
            vcast().KeyInput('4');
        }
    });
    const double start = run.t.clock.secondsSinceMidnight();
    EXPECT_TRUE(endsProcess([&] { DoSeriesGraphVote(ctx); }));
    const double took = run.t.clock.secondsSinceMidnight() - start;
    EXPECT_GE(took, 6.0);
    EXPECT_LT(took, 8.0);
    const QStringList lines = savedLines();
    ASSERT_EQ(lines.size(), 3);
    for (const QString& line : lines)
        EXPECT_EQ(tokens(line).value(0), "4") << line.toStdString();
}

TEST_F(SeriesTest, TwelveSelectionsRunToTheirEnd)
{
    ctx.Iterations = 12;
    PrepareVotesCastWindow(ctx);
    std::deque<int> keys;
    for (int i = 0; i < 12; ++i)
        keys.insert(keys.end(), {'1', ' '});
    pressInTurn(keys);
    EXPECT_TRUE(endsProcess([&] { DoSeriesGraphVote(ctx); }));
    const QStringList lines = savedLines();
    ASSERT_EQ(lines.size(), 12);
    EXPECT_EQ(lines.last().section(',', 3), "12of12");
    EXPECT_TRUE(captions.count("11th selection"));
    EXPECT_TRUE(captions.count(" selection"));   // no ordinal past the eleventh
}

TEST_F(SeriesTest, EscRedrawsTheSavedSelectionsAndAMissingOneIsEmpty)
{
    // Selections 1 and 3 of 3 were saved; the live vote had left something in row 2.
    ctx.oPres->GetSlides()->Item(2)->GetTags()->Add(
        "TLXVOTES", "01 Nov 2026,10:00:00,1;2;-;,1of3\r\n01 Nov 2026,10:00:00,4;X;3;,3of3\r\n");
    ctx.seriesVotes.redim(3, 10, 2.0f);
    EXPECT_TRUE(endsProcess([&] { execRevote(ctx, 0, 0); }));
    EXPECT_EQ(ctx.seriesVotes(0, 0), 1);
    EXPECT_EQ(ctx.seriesVotes(0, 2), -1);
    EXPECT_EQ(ctx.seriesVotes(2, 1), -2);
    for (int k = 0; k <= ctx.seriesVotes.ubound2(); ++k)
        EXPECT_EQ(ctx.seriesVotes(1, k), -1) << k;
    EXPECT_EQ(charts.charts, 1);
    EXPECT_EQ(result.placed, std::vector<short>{-1});
    EXPECT_EQ(savedLines().size(), 2);   // nothing saved
}

TEST_F(SeriesTest, ATextSeriesOnTheKeyboardSavesItsLinesAndEnds)
{
    ctx.GraphType = 8;
    ctx.Iterations = 2;
    PrepareVotesCastWindow(ctx);
    pressInTurn({'2', ' ', '3', ' '});
    EXPECT_TRUE(endsProcess([&] { DoSeriesTextVote(ctx); }));
    const QStringList lines = savedLines();
    ASSERT_EQ(lines.size(), 2);
    EXPECT_EQ(tokens(lines[0]).value(0), "2");
    EXPECT_EQ(tokens(lines[1]).value(0), "3");
    EXPECT_EQ(ReadVoteEnd(ctx), "Vote finished");
    EXPECT_EQ(charts.charts, 0);
}

TEST(SelectionOrdinal, NamesTheFirstElevenOnly)
{
    const std::pair<int, const char*> cases[] = {{1, "1st"}, {2, "2nd"}, {3, "3rd"}, {4, "4th"},
                                                 {10, "10th"}, {11, "11th"}, {12, ""}, {0, ""}};
    for (auto [n, text] : cases)
        EXPECT_EQ(SelectionOrdinal(n), text) << n;
}

// The count shown while a selection is open: keypads only, never the element past the last.
TEST_F(SeriesTest, TheCountOfASelectionFollowsItsNumbering)
{
    ctx.keypadUniverse = 6;
    ctx.optionCount = 4;
    ctx.seriesVotes.redim(1, 6, 0.0f);   // the element past the last keypad reads 0
    const float row[] = {0, 1, 4, 5, -2, -1};
    ctx.votes.redim(6, QStringLiteral("0"));
    for (int k = 0; k < 6; ++k) {
        ctx.seriesVotes(0, k) = row[k];
        ctx.votes(k) = QString::number(row[k]);
    }
    struct Case {
        const char* base;
        short startFrom;
        const char* shown;
    };
    // 0 counts only when the options start at 0; above `optionCount` never.
    const Case cases[] = {{"KBOARD", 1, "3"}, {"KBOARD", 0, "4"}, {"TALLIX", 1, "3"}, {"TALLIX", 0, "4"}};
    for (const Case& c : cases) {
        ctx.BaseType = c.base;
        ctx.startFrom = c.startFrom;
        showMakeCast(ctx, ctx.optionCount, 0);
        EXPECT_EQ(view().counter, c.shown) << c.base << " from " << c.startFrom;
    }
}

TEST_F(SeriesTest, RankedSelectionsPastTheTenthWeighOne)
{
    ctx.Iterations = 12;
    ctx.keypadUniverse = 2;
    ctx.votes.redim(2, QStringLiteral("-1"));
    ctx.seriesVotes.redim(12, 2, -1.0f);
    for (int t = 0; t < 12; ++t)
        ctx.seriesVotes(t, 0) = 1;   // keypad 1 picks option 1 every time
    struct Case {
        const char* voteType;
        double total;
    };
    // Ranked: first choices weigh 12, 11 ... 3 for the first ten places, then 1 and 1.
    const double ranked = 12 + 11 + 10 + 9 + 8 + 7 + 6 + 5 + 4 + 3 + 1 + 1;
    const Case cases[] = {{"5", ranked}, {"1", ranked}};
    for (const Case& c : cases) {
        ctx.controllerVoteType = c.voteType;
        ctx.SeriesWeighting.redim(-1);
        short filter = 0, sample = 0;
        CollateSeriesVotes(ctx, filter, sample);
        EXPECT_EQ(ctx.optionCounts(0), c.total) << c.voteType;
        EXPECT_EQ(ctx.seriesCounts(11, 0), 1) << c.voteType;
    }
}

} // namespace
