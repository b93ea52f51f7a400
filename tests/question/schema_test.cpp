#include "question/columns_vote_xml.h"
#include "question/common_xml.h"
#include "question/settings_document.h"
#include "foundation/host.h"
#include "host/deck_host.h"
#include "support/error_reports.h"
#include "support/test_context.h"

#include <gtest/gtest.h>

using namespace tallix;
using tallix::testing::ExpectErrorReports;
using tallix::testing::TestRun;

namespace {

class Schema : public ::testing::Test {
protected:
    TestRun run;
    RunContext& ctx = run.ctx;
    host::MemoryHost ppt{2};

    Schema()
    {
        ctx.oPPT = &ppt;
        ctx.oPres = ppt.ActivePresentation();
        ctx.currentSlide = 1;
    }
    host::Shape* addShape(const QString& name, double l, double t, double w, double h)
    {
        host::Shape* s = ctx.oPres->GetSlides()->Item(1)->GetShapes()->AddShape(1, l, t, w, h);
        s->SetName(name);
        return s;
    }

    void read(const QString& body)
    {
        ASSERT_TRUE(settingsDocOf(ctx).loadXML("<tlxfile>" + body + "</tlxfile>"));
        SetVarsFromXML(ctx);
    }
};

TEST_F(Schema, ConversionRulesOfTheRunSettings)
{
    read("<vote_info><vType>4</vType><TimeLeft>0</TimeLeft><options>3</options><startFrom>1</startFrom>"
         "<Abstain>-1</Abstain><ShowVotesIndicator>True</ShowVotesIndicator><PercentDP>1.9</PercentDP>"
         "<NumberDecimalPlaces>2</NumberDecimalPlaces><HeightRatio>1,5</HeightRatio></vote_info>"
         "<vCast><vCastLeft>0.25</vCastLeft></vCast>"
         "<quiz_info><CorrectAnswerStyle>0</CorrectAnswerStyle><FreeTextTopX>7</FreeTextTopX></quiz_info>");
    EXPECT_EQ(ctx.vType, 1);
    EXPECT_EQ(ctx.TimeLeft, 10);
    EXPECT_EQ(ctx.optionCount, 3);
    EXPECT_EQ(ctx.optionsCopy, 3);
    EXPECT_EQ(ctx.voteOptions.ubound(), 3);
    EXPECT_TRUE(ctx.allowAbstain);
    EXPECT_TRUE(ctx.ShowVotesIndicator);
    EXPECT_EQ(ctx.PercentDP, 1);
    EXPECT_EQ(ctx.CorrectAnswerStyle, 1);
    EXPECT_EQ(ctx.NumberDecimalPlaces, 7); // quiz_info is read after vote_info and shares the store
    EXPECT_FLOAT_EQ(ctx.vCastLeft, 0.25f);
    EXPECT_DOUBLE_EQ(ctx.HeightRatio, 15); // the number reader drops a comma on a point-decimal machine
}

TEST_F(Schema, CorrectAnswersAndValues)
{
    read("<vote_info><options>3</options></vote_info>"
         "<quiz_info><correctAnswer>2|5</correctAnswer><correctAnswerValues>1|4|4|2</correctAnswerValues>"
         "</quiz_info>");
    EXPECT_TRUE(ctx.voteOptions(2).isCorrect);
    EXPECT_FALSE(ctx.voteOptions(1).isCorrect);
    EXPECT_EQ(ctx.voteOptions.ubound(), 3); // 5 lies beyond the records and is passed over
    EXPECT_DOUBLE_EQ(ctx.voteOptions(3).value, 2);
    EXPECT_TRUE(ctx.voteOptions(1).isHighest); // the first of the greatest
    EXPECT_FALSE(ctx.voteOptions(2).isHighest);
}

TEST_F(Schema, NoValueAboveZeroMarksOptionZeroHighest)
{
    read("<vote_info><options>2</options></vote_info><quiz_info><correctAnswerValues>0|0</correctAnswerValues>"
         "</quiz_info>");
    EXPECT_TRUE(ctx.voteOptions(0).isHighest);
}

TEST_F(Schema, GroupOptionsUseTheFirstOptionNumber)
{
    read("<vote_info><options>4</options><startFrom>1</startFrom></vote_info>"
         "<group_info><GroupOption2>Managers</GroupOption2><groupoption4>Staff</groupoption4></group_info>");
    EXPECT_TRUE(ctx.voteOptions(1).isGroupOption);
    EXPECT_EQ(ctx.voteOptions(1).groupOptionName, "Managers");
    EXPECT_EQ(ctx.voteOptions(3).groupOptionName, "Staff");
}

TEST_F(Schema, AGroupBeyondTheOptionsEndsTheReaderThroughTheErrorReport)
{
    ExpectErrorReports reports;
    read("<vote_info><options>2</options></vote_info><group_info><GroupOption9>X</GroupOption9></group_info>"
         "<graph_info><GraphType>4</GraphType></graph_info>");
    EXPECT_EQ(ctx.GraphType, 0); // sections after the failure are not read
    EXPECT_EQ(reports.count(), 1);
    EXPECT_TRUE(run.errLog().contains("Module: Common_ColumnsVoteXML"));
    ASSERT_EQ(run.t.dialogs.shown.size(), 1u); // reported to the user
}

TEST_F(Schema, AValueHoldingErrSkipsItsSectionButNotVoteInfo)
{
    read("<vote_info><options>3</options><VotesCastLabel>Error votes</VotesCastLabel></vote_info>"
         "<quiz_info><haveTick>1</haveTick><FreeOnlyShowMatching>1</FreeOnlyShowMatching>"
         "<correctAnswer>Cherry</correctAnswer></quiz_info>"
         "<rank_vote><NumberRankVotes>2</NumberRankVotes></rank_vote>");
    EXPECT_EQ(ctx.VotesCastLabel, "Error votes");
    EXPECT_EQ(ctx.haveTick, 0);
    EXPECT_EQ(ctx.NumberRankVotes, 2); // its key name holding "err" does not count
}

TEST_F(Schema, TheOlderDisplayKeyMovesToVoteInfo)
{
    read("<quilmark_info><Quilmark_Display>1</Quilmark_Display></quilmark_info><vote_info><options>2</options>"
         "</vote_info>");
    EXPECT_EQ(ctx.Quilmark_Display, 1);
    const QString xml = settingsDocOf(ctx).xml();
    EXPECT_FALSE(xml.contains("quilmark_info"));
    EXPECT_TRUE(xml.contains("<Quilmark_Display>1</Quilmark_Display>"));
}

TEST_F(Schema, ChartSections)
{
    ctx.optionColours.redim(10);
    read("<graph_info><GraphType>9</GraphType><GraphPlotting>1</GraphPlotting><BarSortOrder>1</BarSortOrder>"
         "</graph_info><BarColours><Bar001>255</Bar001><Bar002>65280</Bar002></BarColours>"
         "<BarDepth><Depth001>55.9</Depth001></BarDepth>"
         "<ChartDimensions><MarginTop005>7</MarginTop005><PositionLeft001>0.5</PositionLeft001></ChartDimensions>"
         "<Font><Size>20</Size></Font>"
         "<vArea><Left>0.1</Left><Width>0.5</Width></vArea>");
    EXPECT_EQ(ctx.GraphType, 9);
    EXPECT_EQ(ctx.GraphPlotting, 0);
    EXPECT_EQ(ctx.BarSortOrder, 0); // never sorted in a live vote
    EXPECT_EQ(ctx.optionColours(1), 255);
    EXPECT_EQ(ctx.optionColours(2), 65280);
    EXPECT_EQ(ctx.optionColours.ubound(), 10);
    EXPECT_EQ(ctx.BarDepth(1), 55);
    ASSERT_EQ(ctx.ChartDimensions.ubound(), 5);
    EXPECT_EQ(ctx.ChartDimensions(5).MarginTop, 7);
    EXPECT_EQ(ctx.ChartDimensions(3).MarginTop, 0);
    EXPECT_FLOAT_EQ(ctx.ChartDimensions(1).PositionLeft, 0.5f);
    EXPECT_EQ(ctx.Font.Name, "Arial");
    EXPECT_EQ(ctx.Font.Size, 20);
    EXPECT_FLOAT_EQ(ctx.vArea(0).Left, 0.1f);
    EXPECT_FLOAT_EQ(ctx.vArea(0).Width, 0.5f);
}

TEST_F(Schema, TheGrowingAnimationIsOnUnlessTheKeyIsThere)
{
    read("<graph_info><GraphType>2</GraphType></graph_info>");
    EXPECT_EQ(ctx.GraphPlotting, 1);
}

TEST_F(Schema, RatingTextAndSeriesSections)
{
    read("<vote_info><options>2</options></vote_info>"
         "<rank_vote><NumberRankVotes>2</NumberRankVotes><RankPositionX001>10.5</RankPositionX001>"
         "<RankPositionW002>0.25</RankPositionW002><RankPositionX000>7</RankPositionX000>"
         "<RankPositionY009>3</RankPositionY009><HighlightColour>1</HighlightColour></rank_vote>"
         "<text_vote><NumberTextVotes>2</NumberTextVotes><textPositionX003001>4</textPositionX003001>"
         "<HighlightColour>2</HighlightColour></text_vote>"
         "<series_vote><Iterations>3</Iterations><Exclusive>True</Exclusive>"
         "<SeriesWeighting>1|2|3|4|5|6|7|8|9|10|11|12</SeriesWeighting></series_vote>");
    // Items count from 1: the first item's key places record 0, and the last item's is read.
    EXPECT_FLOAT_EQ(ctx.RankPosition(0).X, 10.5f);
    EXPECT_FLOAT_EQ(ctx.RankPosition(1).W, 0.25f);
    EXPECT_FLOAT_EQ(ctx.RankPosition(1).X, 0.0f);   // 000 names no item
    EXPECT_EQ(ctx.RankPosition.ubound(), 1);        // item 9 lies beyond the count
    EXPECT_EQ(ctx.NumberTextVotes, 3);
    EXPECT_DOUBLE_EQ(ctx.textPosition(3, 1).X, 4);
    EXPECT_EQ(ctx.HighlightColour, 2); // text_vote, read later, wins
    EXPECT_EQ(ctx.Iterations, 3);
    EXPECT_TRUE(ctx.Exclusive);
    ASSERT_EQ(ctx.SeriesWeighting.ubound(), 9);
    EXPECT_DOUBLE_EQ(ctx.SeriesWeighting(9), 10);
}

TEST_F(Schema, TheChartOnTheSlideDecidesTheChartArea)
{
    const host::PageSetup page = ctx.oPres->GetPageSetup();
    addShape("tallix chart sample", page.SlideWidth / 4, page.SlideHeight / 2, page.SlideWidth / 2,
             page.SlideHeight / 4);
    read("<vArea><Left>0.9</Left><Top>0.9</Top><Width>0.1</Width><Height>0.1</Height></vArea>");
    EXPECT_NEAR(ctx.vArea(0).Left, 0.25, 1e-3);
    EXPECT_NEAR(ctx.vArea(0).Top, 0.5, 1e-3);
    EXPECT_NEAR(ctx.vArea(0).Width, 0.5, 1e-3);
    EXPECT_NEAR(ctx.vArea(0).Height, 0.25, 1e-3);
}

TEST_F(Schema, AVisibleLiveChartWinsOverTheSampleAndAWizardLaunchLooksAtNothing)
{
    const host::PageSetup page = ctx.oPres->GetPageSetup();
    addShape("tallix chart sample", 0, 0, page.SlideWidth, page.SlideHeight);
    addShape("tallix chart", page.SlideWidth / 2, 0, page.SlideWidth / 2, page.SlideHeight / 2);
    read("<vArea><Left>0.9</Left></vArea>");
    EXPECT_NEAR(ctx.vArea(0).Left, 0.5, 1e-3);
    ctx.arg2 = "wizard";
    read("<vArea><Left>0.9</Left></vArea>");
    EXPECT_NEAR(ctx.vArea(0).Left, 0.9, 1e-3);
}

TEST(SectionListingFails, TheTwoTests)
{
    EXPECT_TRUE(SectionListingFails("vote_info", "Err - not found"));
    EXPECT_FALSE(SectionListingFails("vote_info", "Answers|Err - none\r\noptions|3"));
    EXPECT_TRUE(SectionListingFails("quiz_info", "k|ERROR"));
    EXPECT_FALSE(SectionListingFails("rank_vote", "NumberRankVotes|3"));
    EXPECT_FALSE(SectionListingFails("quiz_info", ""));
}

} // namespace
