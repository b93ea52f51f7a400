// A reshow from the deck alone: the slide list, the chart references found again, the
// keypad filters, and the question's settings read for its chart.

#include "host/deck_host.h"
#include "question/columns_vote_xml.h"
#include "question/common_xml.h"
#include "question/settings_document.h"
#include "reshow/reshow_display.h"
#include "reshow/reshow_setup.h"
#include "reshow/result_filters.h"
#include "results/load_votes.h"
#include "support/test_context.h"

#include <gtest/gtest.h>

using namespace tallix;
using tallix::testing::TestRun;

namespace {

// Slide 2 (identity 257) asks who you are, slide 3 (258) a yes-or-no question.
class ReshowTest : public ::testing::Test {
protected:
    TestRun run;
    RunContext& ctx = run.ctx;
    host::MemoryHost ppt{4};

    ReshowTest()
    {
        ctx.oPPT = &ppt;
        ctx.oPres = ppt.ActivePresentation();
        ctx.currentSlide = 4;
        ctx.keypadUniverse = 7;   // one keypad more than the saved lines hold
        question(2, "g1", "<GroupOption001>Staff</GroupOption001><GroupOption002>Student</GroupOption002>",
                 "01 Nov 2026,10:00:00,2;2;2;2;2;\r\n02 Nov 2026,10:00:00,1;2;1;2;-;\r\n99\r\n");
        question(3, "q3", "<GroupOption001>Yes</GroupOption001><GroupOption002>No</GroupOption002>",
                 "02 Nov 2026,10:05:00,1;1;2;2;1;\r\n");
        ctx.questionReferences = "257|g1|^Staff^Student^\n258|q3|^Yes^No^";
        GetSlideInfo(ctx);
    }
    host::Slide* slide(int n) { return ctx.oPres->GetSlides()->Item(n); }
    void question(int n, const QString& qid, const QString& groups, const QString& saved)
    {
        slide(n)->GetTags()->Add("tlxVote", "<tlxfile><file_info><QID>" + qid + "</QID></file_info><group_info>" +
                                                groups + "</group_info></tlxfile>");
        slide(n)->GetTags()->Add("TLXVOTES", saved);
    }
    std::vector<short> filter() const { return {ctx.groupFilter.begin(), ctx.groupFilter.end()}; }
};

TEST_F(ReshowTest, FiltersKeepTheKeypadsByTheirLastAnswers)
{
    struct Case {
        const char* text;
        short join;   // 1: any part
        std::vector<short> kept;
    };
    // Each saved list ends in ";", so keypad 6 has an empty entry; keypad 7 has none at all.
    const Case cases[] = {
        {"", 0, {1, 1, 1, 1, 1, 1, 1}},
        {":", 0, {1, 1, 1, 1, 1, 1, 1}},
        {"257:Staff", 0, {1, 0, 1, 0, 0, 0, 1}},              // keypad 7, past the entries, stays
        {"^257: Staff ^", 0, {1, 0, 1, 0, 0, 0, 1}},
        {"^257:Staff^258:Yes^", 0, {1, 0, 0, 0, 0, 0, 1}},    // both
        {"^257:Staff^258:Yes^", 1, {1, 1, 1, 0, 1, 0, 1}},    // either: the first part's keypad 3 stays
        {"^257:Nobody^", 0, {0, 0, 0, 0, 0, 1, 1}},           // no answer: only an empty entry matches
        {"^999:Staff^", 0, {1, 1, 1, 1, 1, 1, 1}},            // no such slide: nothing changes
    };
    for (const Case& c : cases) {
        ctx.rshFilterType = c.join;
        createFilter(ctx, c.text);
        EXPECT_EQ(filter(), c.kept) << c.text << " join " << c.join;
    }
}

TEST_F(ReshowTest, AReferenceFoundTwiceNamesNoAnswer)
{
    ctx.questionReferences += "\n257|g1|^Staff^";
    QString answer = "x";
    getVoteSlideAndFilter(ctx, "257:Staff", 257, answer);
    EXPECT_TRUE(answer.isEmpty());
}

TEST_F(ReshowTest, TheLastFinishedLineIsTheResult)
{
    const std::pair<const char*, const char*> cases[] = {
        {"a,b,1;2;\r\nc,d,3;4;\r\n99\r\n", "3;4;"},
        {"a,b,1;2;\r\nc,d,\r\n", "1;2;"},
        {"a,b,1;2;\nc,d,5;", "5;"},
        {"99", ""},
        {"", ""},
    };
    for (auto [saved, list] : cases)
        EXPECT_EQ(LastFinishedVoteList(saved), list) << saved;
}

TEST_F(ReshowTest, ReferencesAreFoundAgainOrSkipped)
{
    struct Case {
        const char* references;
        const char* chart;
        const char* found;
    };
    const Case cases[] = {
        {"257|g1|^Staff^Student^\n258|q3|^Yes^No^", "258|q3", "258:q3"},
        {"257|g1|^Staff^Student^", "258|q3", "xxx"},                       // deleted from the list
        {"258|q3|^Yes^\n258|q3|^No^", "258|q3", "xxx"},                    // two questions answer
        {"300|q3|^Yes^No^", "300|q3", "258:q3:^Yes^No^"},                  // a copy: found by its QID
        {"", "", "xxx"},
    };
    for (const Case& c : cases) {
        ctx.questionReferences = c.references;
        EXPECT_EQ(ResolveReshowReference(ctx, c.chart), c.found) << c.chart << " in " << c.references;
    }
}

TEST_F(ReshowTest, TheSlideListIsKeptForAQuarterOfAnHourWhenAskedTo)
{
    EXPECT_EQ(ctx.slideList, QStringList({"257|g1|^Staff^Student^", "258|q3|^Yes^No^"}));
    const QString stored = ctx.oPres->GetTags()->Item("tlx_SlideInfo");
    EXPECT_TRUE(stored.startsWith("257|g1|^Staff^Student^\r\n258|q3|^Yes^No^\r\n"));

    slide(3)->GetTags()->Delete("tlxVote");   // a change the kept list does not know of
    run.t.clock.advanceSeconds(899);
    GetSlideInfo(ctx, true);
    EXPECT_EQ(ctx.slideList.size(), 2);
    run.t.clock.advanceSeconds(2);
    GetSlideInfo(ctx, true);
    EXPECT_EQ(ctx.slideList, QStringList({"257|g1|^Staff^Student^"}));
}

TEST_F(ReshowTest, ChartsAreNumberedFromOneAndGapsStayEmpty)
{
    settingsDocOf(ctx).loadXML(
        "<tlxfile><reshow_info><rshFilterType>1</rshFilterType><ShowLabels>True</ShowLabels>"
        "<Question_References><![CDATA[257|g1|^Staff^\n258|q3|^Yes^]]></Question_References></reshow_info>"
        "<legend_info><Name>DejaVu Serif</Name><Size>14</Size><Bold>True</Bold><Outline>False</Outline></legend_info>"
        "<reshow_graphs><QNSLIDE001>258|q3</QNSLIDE001><GROUPS001>^257:Staff^</GROUPS001><LEFT001>0.1</LEFT001>"
        "<QNSLIDE003>257|g1</QNSLIDE003></reshow_graphs></tlxfile>");
    SetReshowVarsFromXML(ctx);
    ASSERT_EQ(ctx.vArea.ubound(), 3);
    EXPECT_EQ(ctx.vArea(1).questionSlideRef, "258|q3");
    EXPECT_FLOAT_EQ(ctx.vArea(1).Left, 0.1f);
    EXPECT_TRUE(ctx.vArea(2).questionSlideRef.isEmpty());
    EXPECT_EQ(ctx.vArea(3).questionSlideRef, "257|g1");
    EXPECT_EQ(ctx.reshowFilter(1), "^257:Staff^");
    EXPECT_EQ(ctx.rshFilterType, 1);
    EXPECT_TRUE(ctx.ShowLabels);
    EXPECT_EQ(ctx.questionReferences, "257|g1|^Staff^\n258|q3|^Yes^");
    EXPECT_EQ(ResolveReshowReference(ctx, ctx.vArea(2).questionSlideRef), "xxx");
    ASSERT_EQ(ctx.Legends.ubound(), 0);
    EXPECT_EQ(ctx.Legends(0).Name, "DejaVu Serif");
    EXPECT_EQ(ctx.Legends(0).Size, 14);
    EXPECT_TRUE(ctx.Legends(0).Bold);
    EXPECT_TRUE(ctx.Legends(0).HidePen);
}

TEST_F(ReshowTest, TheSlideListReadsDocumentsWithOrWithoutLineBreaks)
{
    slide(1)->GetTags()->Add("tlxVote", "<tlxfile>\r\n<file_info><QID>z</QID></file_info>\r\n<group_info>\r\n"
                                        "  <GroupOption001>A</GroupOption001>\r\n  <GroupOption002>B</GroupOption002>\r\n"
                                        "</group_info>\r\n</tlxfile>\r\n");
    slide(4)->GetTags()->Add("tlxVote", "<tlxfile><unclosed>");   // does not read: left out
    GetSlideInfo(ctx);
    EXPECT_EQ(ctx.slideList, QStringList({"256|z|^A^B^", "257|g1|^Staff^Student^", "258|q3|^Yes^No^"}));
}

TEST_F(ReshowTest, AReshownQuestionKeepsWhatALiveVoteWouldChange)
{
    slide(3)->GetTags()->Add(
        "TLXVOTE",
        "<tlxfile><vote_info><vType>4</vType><options>3</options><TimeLeft>30</TimeLeft></vote_info>"
        "<quiz_info><CorrectAnswerStyle>0</CorrectAnswerStyle></quiz_info>"
        "<graph_info><GraphType>2</GraphType><BarSortOrder>2</BarSortOrder></graph_info>"
        "<rank_vote><NumberRankVotes>2</NumberRankVotes><RankPositionX005>0.5</RankPositionX005></rank_vote>"
        "</tlxfile>");
    ctx.TimeLeft = 9;
    LoadChartXML(ctx, 258);
    EXPECT_EQ(ctx.vType, 4);
    EXPECT_EQ(ctx.optionCount, 3);
    EXPECT_EQ(ctx.TimeLeft, 9);
    EXPECT_EQ(ctx.CorrectAnswerStyle, 0);
    EXPECT_EQ(ctx.BarSortOrder, 2);
    EXPECT_EQ(ctx.NumberRankVotes, 5);
    EXPECT_FLOAT_EQ(ctx.RankPosition(4).X, 0.5f);
}

} // namespace

namespace {

TEST_F(ReshowTest, AFilterOnASlideWithoutResultsSaysSoAndEnds)
{
    int exits = 0;
    ctx.terminator = [&](int code) {
        ++exits;
        throw ProcessExit{code};
    };
    slide(3)->GetTags()->Delete("TLXVOTES");
    EXPECT_THROW(createFilter(ctx, "^258:Yes^"), ProcessExit);
    EXPECT_EQ(exits, 1);
    ASSERT_FALSE(run.t.dialogs.shown.empty());
    EXPECT_EQ(run.t.dialogs.shown.back().text, "Could not find results for groups slide 3");
}

} // namespace

namespace {

TEST_F(ReshowTest, AChartsAreaComesFromTheLastShowingOrItsPlaceholder)
{
    ctx.makeMode = true;   // no show runs in this deck
    host::Shapes* shapes = slide(4)->GetShapes();
    const host::PageSetup page = ctx.oPres->GetPageSetup();
    shapes->AddShape(1, 0.1 * page.SlideWidth, 0.2 * page.SlideHeight, 0.3 * page.SlideWidth, 0.4 * page.SlideHeight)
        ->SetName("reshow 1 tallix chart");
    shapes->AddShape(1, 0.5 * page.SlideWidth, 0.2 * page.SlideHeight, 0.4 * page.SlideWidth, 0.5 * page.SlideHeight)
        ->SetName("tallix chart 2 sample");
    host::Shape* hidden = shapes->AddShape(1, 0, 0, 10, 10);
    hidden->SetName("reshow 3 tallix chart");
    hidden->SetVisible(false);   // a hidden chart of an earlier showing says nothing
    ctx.vArea.redim(3);
    SetVareaFromSlide(ctx);
    EXPECT_NEAR(ctx.vArea(1).Left, 0.1, 1e-3);
    EXPECT_NEAR(ctx.vArea(1).Height, 0.4, 1e-3);
    EXPECT_NEAR(ctx.vArea(2).Left, 0.5, 1e-3);
    EXPECT_NEAR(ctx.vArea(2).Width, 0.4, 1e-3);
    EXPECT_EQ(ctx.vArea(3).Width, 0);
}

} // namespace
