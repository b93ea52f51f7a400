#include "controller_fixture.h"
#include "support/qt_print.h"

#include <functional>

using namespace tallix;
using tallix::testing::ControllerTest;

namespace {

struct SingleCase {
    const char* name;
    std::function<void(RunContext&)> settings;
    std::vector<const char*> texts;
    int keypad;
    const char* expectedVote;
    int expectedCast;
    const char* expectedCounter;
};

class SingleValuePath : public ControllerTest, public ::testing::WithParamInterface<SingleCase> {};

TEST_P(SingleValuePath, StoresCountsAndRejectsByTheRules)
{
    const SingleCase& c = GetParam();
    if (c.settings)
        c.settings(ctx);
    for (const char* t : c.texts)
        feed(QString::fromUtf8(t));
    EXPECT_EQ(vote(c.keypad), QString(c.expectedVote)) << c.name;
    EXPECT_EQ(ctx.votesCast, c.expectedCast) << c.name;
    EXPECT_EQ(counter(), QString(c.expectedCounter)) << c.name;
}

const auto abstainOn = [](RunContext& c) { c.allowAbstain = true; };
const auto fromZero = [](RunContext& c) { c.startFrom = 0; };

INSTANTIATE_TEST_SUITE_P(
    Cases, SingleValuePath,
    ::testing::Values(
        SingleCase{"a later vote replaces, counted once", nullptr, {"[1;2],\r\n", "[1;3],\r\n"}, 1, "3", 1, "2"},
        SingleCase{"zero is outside 1..4", nullptr, {"[2;0],\r\n"}, 2, "-1", 0, "0"},
        SingleCase{"five is outside 1..4", nullptr, {"[2;5],\r\n"}, 2, "-1", 0, "0"},
        SingleCase{"zero abstains when allowed", abstainOn, {"[2;0],\r\n"}, 2, "0", 1, "1"},
        SingleCase{"X abstains when allowed", abstainOn, {"[2;X],\r\n"}, 2, "-2", 1, "1"},
        SingleCase{"from zero, 0 counts", fromZero, {"[3;0],\r\n"}, 3, "0", 1, "1"},
        SingleCase{"from zero, 4 is beyond 0..3", fromZero, {"[3;4],\r\n"}, 3, "-1", 0, "0"},
        SingleCase{"from zero, X reads as 0 and abstains", fromZero, {"[3;X],\r\n"}, 3, "-2", 1, "1"},
        SingleCase{"abstain then a number keeps the number", abstainOn, {"[4;X],\r\n", "[4;2],\r\n"}, 4, "2", 1,
                   "2"},
        SingleCase{"text not ended as a base ends it is lost", nullptr, {"[5;2"}, 5, "-1", 0, "0"},
        SingleCase{"the keyboard base's plain form", nullptr, {"6;3\r\n"}, 6, "3", 1, "1"},
        SingleCase{"a closing bracket stays in the last value", nullptr, {"[7;2]"}, 7, "2]", 1, "1"},
        SingleCase{"detect press is an ordinary value when not accepted", nullptr, {"[8;20],\r\n"}, 8, "-1", 0, "0"},
        SingleCase{"keypad beyond the room is ignored", nullptr, {"[12;2],[1;1],\r\n"}, 1, "1", 1, "1"},
        SingleCase{"two semicolons are ignored", nullptr, {"[1;2;3],\r\n"}, 1, "-1", 0, "0"},
        SingleCase{"a bare number is not vote data", nullptr, {"12\r\n"}, 1, "-1", 0, "0"},
        SingleCase{"value is trimmed", nullptr, {"[2; 3 ],\r\n"}, 2, "3", 1, "1"},
        SingleCase{"every '[' goes, wherever it stands", nullptr, {"[2;[3],\r\n"}, 2, "3", 1, "1"},
        SingleCase{"a '[' removed can join a separator", nullptr, {"[1;2][,[2;3],\r\n"}, 1, "2", 2, "2"},
        SingleCase{"a leading zero stays in the value", fromZero, {"[3;03],\r\n"}, 3, "03", 1, "1"},
        SingleCase{"records of several lines all count", nullptr, {"[1;1],\r\n[2;2],[3;3],\r\n"}, 3, "3", 3,
                   "3"},
        SingleCase{"multi answers are kept together",
                   [](RunContext& c) {
                       c.JoltMultiVote = true;
                       c.FixedFree = 1;
                   },
                   {"[1;red],\r\n", "[1;blue],\r\n"}, 1, "red|blue", 1, "2"},
        SingleCase{"voice entries keep only the keypad",
                   [](RunContext& c) {
                       c.FixedFree = 1;
                       c.FractionalJoltTEXT = 2;
                   },
                   {"[9;hello],\r\n"}, 9, "Keypad 9 ", 1, "1"}));

TEST_F(ControllerTest, KeypadLimitStopsNewKeypadsUnlessRandomFillIsOn)
{
    ctx.maxKeypads = 2;
    feed("[1;1],[2;2],[3;3],\r\n");
    EXPECT_EQ(ctx.votesCast, 2);
    EXPECT_EQ(vote(3), "-1");
    ctx.randomFill = true;
    feed("[3;3],\r\n");
    EXPECT_EQ(vote(3), "3");
    EXPECT_FALSE(ctx.randomFill); // lifted for one pass only
}

TEST_F(ControllerTest, AKeypadZeroLineAloneIsNotVoteDataButWithAGoodLineIsFatal)
{
    feed("[0;2],\r\n");
    EXPECT_EQ(ctx.votesCast, 0);
    EXPECT_EQ(exits, 0);
    tallix::testing::ExpectErrorReports reports;
    EXPECT_THROW(feed("[1;2],\r\n[0;2],\r\n"), ProcessExit);
    expectFatal(reports, "txt_data_Change");
    EXPECT_TRUE(reports.all().contains("Module: comms\r\nProcedure: txt_data_Change"));
    EXPECT_EQ(vote(1), "2"); // the good line went through first
    EXPECT_FALSE(comms.decoderBusy);
}

TEST_F(ControllerTest, TextWhilePausedIsHeldWholeInArrivalOrder)
{
    comms.livePaused = true;
    feed("[1;2],\r\n");
    feed("[2;3],\r\n");
    EXPECT_EQ(comms.pausedQueue, QStringList({"[1;2],\r\n", "[2;3],\r\n"}));
    EXPECT_EQ(ctx.votesCast, 0);
    comms.livePaused = false;
    for (const QString& held : comms.pausedQueue)
        feed(held);
    EXPECT_EQ(vote(1), "2");
    EXPECT_EQ(vote(2), "3");
}

struct PauseCase {
    const char* text;
    QStringList held;
};

class LiveTextPause : public ControllerTest, public ::testing::WithParamInterface<PauseCase> {};

// The live text display fills its screen at keypad 2: the vote pauses there, the line it
// paused in and every later line are held for the resume, and the resume counts them.
TEST_P(LiveTextPause, HoldsThePausedLineAndTheRestForTheResume)
{
    ctx.FixedFree = 1;
    ctx.FractionalJoltTEXT = 1;
    ctx.Joltdisplay = 0;
    ctx.WLSShow = true;
    comms.liveTextDisplay = [](qint32 keypad, const QString&) { return keypad == 2; };
    feed(GetParam().text);
    EXPECT_TRUE(comms.livePaused);
    EXPECT_TRUE(link.sent.contains("PAUSEVOTE"));
    EXPECT_EQ(vote(2), "b");
    EXPECT_EQ(vote(3), "-1"); // the rest of the line waits
    EXPECT_EQ(comms.pausedQueue, GetParam().held);

    comms.liveTextDisplay = [](qint32, const QString&) { return false; };
    comms.livePaused = false;
    for (const QString& held : QStringList(comms.pausedQueue))
        feed(held);
    for (int k = 1; k <= 5; ++k)
        EXPECT_EQ(vote(k), GetParam().held.isEmpty() && k > 2 ? QString("-1") : QString(QChar('a' + k - 1))) << k;
}

INSTANTIATE_TEST_SUITE_P(
    Texts, LiveTextPause,
    ::testing::Values(PauseCase{"[1;a],[2;b],[3;c],\r\n[4;d],\r\n\r\n[5;e],\r\n",
                                {"[1;a],2;b],3;c],],", "[4;d],],", "[5;e],],"}},
                      // Paused in the last line: its last records are dropped.
                      PauseCase{"[1;a],[2;b],[3;c],", {}}));

TEST_F(ControllerTest, ExclusiveSeriesTakesBackARepeatedSelection)
{
    ctx.vType = 2;
    ctx.Iterations = 2;
    ctx.Exclusive = true;
    AllocArrays(ctx);
    feed("[1;3],\r\n");
    EXPECT_EQ(ctx.seriesVotes(0, 0), 3.0f);
    ctx.currentIteration = 1;
    ResetVoteArrays(ctx);
    ctx.votesCast = 0;
    feed("[1;3],\r\n");
    EXPECT_EQ(vote(1), "-1");
    EXPECT_EQ(ctx.votesCast, 0);
    EXPECT_EQ(ctx.seriesVotes(1, 0), 0.0f); // nothing stored
    feed("[1;4],\r\n");
    EXPECT_EQ(ctx.seriesVotes(1, 0), 4.0f);
}

TEST_F(ControllerTest, ListPathStoresSelectionsAndNoneBeyondTheOptions)
{
    ctx.controllerVoteType = "5";
    ctx.vType = 2;
    ctx.Iterations = 3;
    AllocArrays(ctx);
    feed("[2;4|9],\r\n");
    EXPECT_EQ(vote(2), "1");
    EXPECT_EQ(ctx.seriesVotes(0, 1), 4.0f);
    EXPECT_EQ(ctx.seriesVotes(1, 1), -1.0f);
    EXPECT_EQ(ctx.seriesVotes(2, 1), -1.0f);
    EXPECT_EQ(counter(), "1");
}

TEST_F(ControllerTest, MultiSelectExclusiveCarriesSeenChoicesAcrossKeypadsOfOneMessage)
{
    ctx.controllerVoteType = "3";
    ctx.PriorMultiVote = 1;
    ctx.vType = 2;
    ctx.Iterations = 2;
    ctx.Exclusive = true;
    AllocArrays(ctx);
    feed("[1;1*2*],[2;2*3*],\r\n");
    EXPECT_EQ(ctx.seriesVotes(0, 0), 1.0f);
    EXPECT_EQ(ctx.seriesVotes(1, 0), 2.0f);
    EXPECT_EQ(ctx.seriesVotes(0, 1), 3.0f); // keypad 2 may not repeat keypad 1's 2
    feed("[3;12],\r\n");                     // digits without separator: one selection each
    EXPECT_EQ(ctx.seriesVotes(0, 2), 1.0f);
    EXPECT_EQ(ctx.seriesVotes(1, 2), 2.0f);
}

TEST_F(ControllerTest, FlagRowsStoreTheOptionsFlagged)
{
    ctx.controllerVoteType = "3";
    ctx.vType = 2;
    ctx.Iterations = 2;
    AllocArrays(ctx);
    feed("[4;0|1|1|1],\r\n");
    EXPECT_EQ(ctx.seriesVotes(0, 3), 2.0f);
    EXPECT_EQ(ctx.seriesVotes(1, 3), 3.0f);
}

TEST_F(ControllerTest, RatingRecordsAreCreditedToTheKeypadOfTheFirstLine)
{
    ctx.controllerVoteType = "6";
    ctx.GraphType = 7;
    ctx.ratingVotes.redim(10, 3);
    feed("[3;2|0|4|1],[5;1|1|1|1],\r\n");
    EXPECT_EQ(vote(3), "1");
    EXPECT_EQ(vote(5), "-1");
    EXPECT_EQ(ctx.votesCast, 1);
    EXPECT_EQ(counter(), "2");
    EXPECT_EQ(ctx.ratingVotes(3, 0), 1); // the second record overwrote the first
    EXPECT_EQ(ctx.ratingVotes(3, 1), 1);
}

TEST_F(ControllerTest, ARatingWithOnlyTheLastFieldSetDoesNotCount)
{
    ctx.controllerVoteType = "6";
    ctx.GraphType = 7;
    ctx.ratingVotes.redim(10, 3);
    feed("[3;0|0|0|4],\r\n");
    EXPECT_EQ(vote(3), "-1");
    EXPECT_EQ(counter(), "0");
}

TEST_F(ControllerTest, AnUnknownVoteTypeSaysSoAndGoesOn)
{
    ctx.controllerVoteType = "42";
    feed("[1;2],\r\n");
    ASSERT_EQ(run.t.dialogs.shown.size(), 1u);
    EXPECT_EQ(run.t.dialogs.shown[0].text, "Scalepad vote type not definied");
    EXPECT_EQ(vote(1), "-1");
}

TEST_F(ControllerTest, ABurstOfTenThousandRecordsLandsInOnePass)
{
    ctx.keypadUniverse = 10000;
    ctx.maxKeypads = 10000;
    ResetVoteArrays(ctx);
    QString burst;
    for (int k = 1; k <= 10000; ++k)
        burst += QStringLiteral("[%1;%2],").arg(k).arg(1 + k % 4);
    const qint64 pumpsBefore = run.t.pump.pumps();
    feed(burst + "\r\n");
    EXPECT_EQ(ctx.votesCast, 10000);
    EXPECT_EQ(counter(), "10000");
    EXPECT_EQ(vote(10000), "1");
    EXPECT_LE(run.t.pump.pumps() - pumpsBefore, 3); // once per line, not per record
}

// --- the settings block a controller sends in reply to BaseInfo

TEST_F(ControllerTest, SettingsBlockSetsTheRoomAndEndsTheWait)
{
    comms.chk_WaitingForData = 1;
    feed("BASETYPE=TALLIX\r\nBASETYPE=GrandHub\r\nMAXKEYPADS=250=ignored\r\nKEYPADSNOTVOTEDLO=1\r\n"
         "KEYPADSNOTVOTEDHI=40\r\nKEYPADSNOTVOTEDCLOSE=1\r\nKEYPADSNOTVOTEDCLOSEPERCENT=92.5\r\nUSEOFFSETS=True\r\n"
         "SCROLLINGDISPLAY=0\r\nunknown=1\r\nno equals sign\r\n");
    EXPECT_EQ(ctx.BaseType, "TALLIX|GrandHub");
    EXPECT_EQ(ctx.maxKeypads, 250);
    EXPECT_EQ(ctx.keypadUniverse, 40);
    EXPECT_EQ(ctx.autoEndByPercent, 1);
    EXPECT_FLOAT_EQ(ctx.autoEndPercent, 92.5f);
    EXPECT_TRUE(ctx.useOffsets);
    EXPECT_FALSE(ctx.scrollingDisplay);
    EXPECT_EQ(comms.chk_WaitingForData, 0);
    feed("BASETYPE=kboard\r\n");
    EXPECT_EQ(ctx.BaseType, "kboard");
}

const QString kTwoBasesAndASpare = QStringLiteral(
    "BASETYPE=TALLIX\r\nOFFSET=0,100,1,3,False\r\nOFFSET=2,0,4,6,True\r\nOFFSET=1,200,9,8,False\r\n"
    "MAXKEYPADS=10\r\n");

TEST_F(ControllerTest, OffsetLinesBuildTheKeypadTable)
{
    ctx.oPres->GetTags()->Add("ActiveKeypads", "101,103,5");
    ctx.activeKeypads = QStringList({"101", "103", "5"});
    feed(kTwoBasesAndASpare);
    EXPECT_EQ(ctx.allKeypadsText, "101,102,103,");
    ASSERT_EQ(ctx.keypadRows.ubound(), 1);
    EXPECT_EQ(ctx.keypadRows(0), "1,100,0");
    EXPECT_EQ(ctx.keypadRows(1), "3,100,0");
    EXPECT_EQ(ctx.baseOffsets.ubound(), 2);
    EXPECT_EQ(ctx.baseOffsets(1), 200);
    EXPECT_EQ(ctx.baseOffsets(2), 0);
    // A presentation that has its list keeps it.
    EXPECT_EQ(tag("ActiveKeypads"), "101,103,5");
    EXPECT_FALSE(link.sent.contains("ReadActiveKeypads"));
}

// A presentation with no record of its active keypads takes every keypad of every base
// in use, tells the controller, and asks for the table again with the new list.
TEST_F(ControllerTest, WithNoActiveKeypadsTagEveryKeypadOfTheBasesInUseIsActive)
{
    ctx.activeKeypads = QStringList({"101"});
    // The controller answers at once, and a keypad votes meanwhile: both arrive while the
    // block's own pass runs, and neither is lost.
    link.onCommand = [this](const QString& c) {
        if (c == "ReadActiveKeypads")
            comms.oTLx_FromTLXCtrl("[102;2],\r\n");
        if (c == "BaseInfo")
            comms.oTLx_FromTLXCtrl("BASETYPE=TALLIX\r\nOFFSET=0,100,1,3,False\r\nMAXKEYPADS=7\r\n");
    };
    ctx.keypadUniverse = 103;
    ResetVoteArrays(ctx);
    feed(kTwoBasesAndASpare);
    run.t.pump.DoEvents();
    EXPECT_EQ(ctx.BaseType, "TALLIX");
    EXPECT_EQ(ctx.maxKeypads, 7);
    EXPECT_EQ(vote(102), "2");
    ASSERT_EQ(ctx.keypadRows.ubound(), 2); // built again with the new list
    EXPECT_EQ(ctx.keypadRows(1), "2,100,0");
    EXPECT_EQ(tag("ActiveKeypads"), "101,102,103");
    EXPECT_EQ(ctx.activeKeypads, QStringList({"101", "102", "103"}));
    const qsizetype told = link.sent.indexOf("ReadActiveKeypads");
    ASSERT_GE(told, 0) << link.sent.join(" / ").toStdString();
    EXPECT_EQ(link.extras[told].value("activeKeypads").toString(), "101,102,103");
    EXPECT_EQ(link.sent.indexOf("BaseInfo", told), told + 1);
}

class NoBaseSendsThis : public ControllerTest, public ::testing::WithParamInterface<const char*> {};

// Text no base sends ends the run with an error report: never a hang or a crash.
TEST_P(NoBaseSendsThis, IsFatal)
{
    tallix::testing::ExpectErrorReports reports;
    EXPECT_THROW(feed(GetParam()), ProcessExit);
    expectFatal(reports, "txt_data_Change");
}

INSTANTIATE_TEST_SUITE_P(Texts, NoBaseSendsThis,
                         ::testing::Values("BASETYPE=TALLIX\r\nOFFSET=0,100\r\n",              // short of fields
                                           "BASETYPE=TALLIX\r\nOFFSET=0,0,1,2147483647,False\r\n", // billions
                                           "BASETYPE=TALLIX\r\nOFFSET=2147483647,0,1,2,False\r\n", // base
                                           "BASETYPE=TALLIX\r\nMAXKEYPADS=99999999999\r\n",
                                           "[99999999999;2],\r\n"));

TEST_F(ControllerTest, AnEmptyActiveListBuildsNoRows)
{
    ctx.oPres->GetTags()->Add("ActiveKeypads", ",");
    ctx.activeKeypads = QStringList({""});
    feed("BASETYPE=TALLIX\r\nOFFSET=0,0,1,3,False\r\n");
    EXPECT_EQ(ctx.allKeypadsText, "1,2,3,");
    EXPECT_EQ(ctx.keypadRows.ubound(), -1);
}

} // namespace
