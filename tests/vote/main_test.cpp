#include "foundation/host.h"
#include "host/deck_host.h"
#include "support/fake_forms.h"
#include "support/qt_print.h"
#include "support/test_context.h"
#include "vote/vote_driver.h"
#include "vote/vote_main.h"

#include <QFile>

#include <gtest/gtest.h>

using namespace tallix;
using tallix::testing::FakeForms;
using tallix::testing::TestRun;

namespace {

const QString kFourOptions = QStringLiteral(
    "<tlxfile><vote_info><vType>0</vType><options>4</options><startFrom>1</startFrom></vote_info>"
    "<graph_info><GraphType>2</GraphType></graph_info></tlxfile>");

class StartUp : public ::testing::Test {
protected:
    TestRun run;
    RunContext& ctx = run.ctx;
    host::HostConfig config;
    std::unique_ptr<host::MemoryHost> ppt;
    FakeForms forms{ctx};
    int exits = 0;

    StartUp()
    {
        config.showRunning = true;
        config.showSlide = 2;
        ppt = std::make_unique<host::MemoryHost>(3, config);
        ctx.oPPT = ppt.get();
        ctx.oPres = ppt->ActivePresentation();
        ctx.app.processId = 77;
        QFile::copy(TALLIX_SOURCE_DIR "/data/Default.xml", run.t.path("app/Default.xml"));
        ctx.terminator = [this](int code) {
            ++exits;
            throw ProcessExit{code};
        };
        // The controller answers BaseInfo at once, as a room with one base does.
        forms.link.onCommand = [this](const QString& c) {
            if (c == "BaseInfo" && forms.comms)
                forms.comms->oTLx_FromTLXCtrl("BASETYPE=TALLIX\r\nKEYPADSNOTVOTEDHI=20\r\nMAXKEYPADS=20\r\n");
        };
    }

    host::Slide* slide(int n) { return ctx.oPres->GetSlides()->Item(n); }
    QString terminated() { return ctx.oPres->GetTags()->Item("tlxVoteTerminated"); }
    void launch(const QString& line)
    {
        ctx.commandLine = line;
        try {
            Main(ctx);
        } catch (const ProcessExit&) {
        }
    }
};

struct SplitCase {
    const char* line;
    const char* arg1;
    const char* arg2;
    const char* arg5;
    int slide;
};

class Splitter : public StartUp, public ::testing::WithParamInterface<SplitCase> {};

TEST_P(Splitter, CutsTrimsAndUpperCases)
{
    ctx.currentSlide = 0;
    SplitLaunchString(ctx, GetParam().line);
    EXPECT_EQ(ctx.arg1, QString(GetParam().arg1));
    EXPECT_EQ(ctx.arg2, QString(GetParam().arg2));
    EXPECT_EQ(ctx.arg5, QString(GetParam().arg5));
    EXPECT_EQ(ctx.currentSlide, GetParam().slide);
}

INSTANTIATE_TEST_SUITE_P(
    Lines, Splitter,
    ::testing::Values(SplitCase{"tlxvote,3", "TLXVOTE", "3", "", 3}, SplitCase{"tlxvote", "TLXVOTE", "", "", 2},
                      SplitCase{"", "", "", "", 2}, SplitCase{" TLXvote , 0 ", "TLXVOTE", "0", "", 2},
                      SplitCase{"TLXVOTE,abc", "TLXVOTE", "ABC", "", 2},
                      SplitCase{"tlxvote,1,,1,nocheck,extra", "TLXVOTE", "1", "NOCHECK", 1}));

TEST_F(StartUp, ASlideWithoutSettingsEndsWithItsReasonAndNoMessage)
{
    launch("TLXVOTE,2");
    EXPECT_EQ(exits, 1);
    EXPECT_EQ(terminated(), "Unable to load vote info\r\n77");
    EXPECT_TRUE(run.t.dialogs.shown.empty()) << run.t.dialogs.shown[0].text.toStdString();
}

TEST_F(StartUp, UnreadableSettingsAreShownThenEndTheRun)
{
    slide(2)->GetTags()->Add("tlxVote", "<tlxfile><vote_info>");
    launch("TLXVOTE,2");
    EXPECT_EQ(exits, 1);
    EXPECT_EQ(terminated(), "Unable to load vote info\r\n77");
    ASSERT_EQ(run.t.dialogs.shown.size(), 1u);
    EXPECT_EQ(run.t.dialogs.shown[0].style, 16);
    EXPECT_TRUE(run.t.dialogs.shown[0].text.endsWith("\r\nError loading vote information\r\nvote error"));
}

TEST_F(StartUp, AGroupActionWithoutAShowEndsSilently)
{
    ppt->config().showRunning = false;
    slide(2)->GetTags()->Add("tlxVote", kFourOptions);
    launch("TLXGROUP,2,3");
    EXPECT_EQ(exits, 1);
    EXPECT_TRUE(terminated().isEmpty());
    EXPECT_TRUE(forms.link.sent.isEmpty() || forms.link.sent.last().contains("EndVote"));
}

TEST_F(StartUp, APresenterWhoLeftTheSlideStopsTheRun)
{
    slide(3)->GetTags()->Add("tlxVote", kFourOptions);
    launch("TLXVOTE,3"); // the show stands on slide 2
    EXPECT_EQ(exits, 1);
}

TEST_F(StartUp, APlainFourOptionVoteTellsTheControllerInOrder)
{
    slide(2)->GetTags()->Add("tlxVote", kFourOptions);
    host::Shape* answers = slide(2)->GetShapes()->AddTextbox(10, 10, 200, 100);
    answers->SetName("tlx_answers");
    answers->GetTextFrame()->SetText("Red\rGreen\rBlue\rYellow");
    launch("TLXVOTE,2");
    const QStringList sent = forms.link.sent;
    const QStringList expectedPrefix = {"BaseInfo",     "GetVoteInfo",
                                        "options=4",    "StartFrom=1",
                                        "VoteType=9",   "AnswerText=1. Red|2. Green|3. Blue|4. Yellow",
                                        "VoteText=    Vote Now||      1-4"};
    ASSERT_GE(sent.size(), expectedPrefix.size()) << sent.join(" / ").toStdString();
    EXPECT_EQ(sent.mid(0, expectedPrefix.size()), expectedPrefix);
    EXPECT_EQ(ctx.BaseType, "TALLIX");
    EXPECT_EQ(forms.link.voteLoadedCount, 1);
}

TEST_F(StartUp, AbstainIsAnnouncedOnlyWhenAllowed)
{
    slide(2)->GetTags()->Add("tlxVote", QString(kFourOptions).replace("<options>", "<Abstain>True</Abstain><options>"));
    launch("TLXVOTE,2");
    EXPECT_TRUE(forms.link.sent.contains("ABSTAIN=True"));
    EXPECT_EQ(ctx.keypadDisplayText, "    Vote Now||      1-4||   0: Abstain");
}

TEST_F(StartUp, OldChartsAreHiddenBeforeTheVote)
{
    slide(2)->GetTags()->Add("tlxVote", kFourOptions);
    host::Shape* old = slide(2)->GetShapes()->AddShape(1, 0, 0, 10, 10);
    old->SetName("tallix chart");
    launch("TLXVOTE,2");
    EXPECT_FALSE(old->Visible());
}

TEST(KeypadDisplayText, LettersNumbersAndAbstain)
{
    TestRun run;
    RunContext& c = run.ctx;
    c.optionCount = 5;
    c.startFrom = 1;
    c.Quilmark_Display = 1;
    EXPECT_EQ(KeypadDisplayText(c), "    Vote Now||      A-E");
    c.Quilmark_Display = 0;
    c.startFrom = 0;
    c.allowAbstain = true;
    EXPECT_EQ(KeypadDisplayText(c), "    Vote Now||      0-4||   0: Abstain");
}

TEST_F(StartUp, TopOptionTwelveIsRefusedWithoutScalepadsButElevenRuns)
{
    slide(2)->GetTags()->Add("tlxVote", QString(kFourOptions).replace("<options>4", "<options>12"));
    launch("TLXVOTE,2");
    ASSERT_FALSE(run.t.dialogs.shown.empty());
    EXPECT_EQ(run.t.dialogs.shown.back().text, "You need Scalepad keypads to use this vote type");
    EXPECT_EQ(exits, 1);
}

} // namespace

namespace {

struct DispatchCase {
    int graphType;
    int vType;
    const char* expectation; // "open": the vote stays open on the base; "refused: <text start>"; "nothing"
};

class Dispatch : public StartUp, public ::testing::WithParamInterface<DispatchCase> {};

TEST_P(Dispatch, PicksTheRunnerByChartFamilyAndMode)
{
    const DispatchCase& c = GetParam();
    slide(2)->GetTags()->Add("tlxVote", QStringLiteral("<tlxfile><vote_info><vType>%1</vType><options>4</options>"
                                                       "<startFrom>1</startFrom><TimeLeft>1</TimeLeft></vote_info>"
                                                       "<graph_info><GraphType>%2</GraphType></graph_info></tlxfile>")
                                             .arg(c.vType)
                                             .arg(c.graphType));
    launch("TLXVOTE,2");
    const QString expectation = QString::fromLatin1(c.expectation);
    const bool started = forms.link.sent.contains("StartVote");
    if (expectation == "open") {
        EXPECT_TRUE(started);
        EXPECT_EQ(exits, 0) << "the vote goes on by events";
    } else if (expectation.startsWith("refused: ")) {
        EXPECT_FALSE(started);
        ASSERT_FALSE(run.t.dialogs.shown.empty());
        EXPECT_TRUE(run.t.dialogs.shown.back().text.startsWith(expectation.mid(9)));
        EXPECT_EQ(exits, 1);
    } else {
        EXPECT_FALSE(started);
        EXPECT_EQ(exits, 0);
        EXPECT_TRUE(run.t.dialogs.shown.empty());
    }
}

INSTANTIATE_TEST_SUITE_P(
    Table, Dispatch,
    ::testing::Values(DispatchCase{2, 0, "open"}, DispatchCase{13, 0, "open"}, DispatchCase{10, 3, "open"},
                      // Count-downs run on the votes-cast window's clock: see the live vote and program tests.
                      DispatchCase{2, 2, "refused: Series votes"}, DispatchCase{8, 0, "refused: Text votes"},
                      DispatchCase{6, 1, "refused: Text votes"}, DispatchCase{7, 0, "refused: Rating votes"},
                      DispatchCase{15, 0, "nothing"}));

} // namespace
