#include "controller_fixture.h"
#include "foundation/event_pump.h"
#include "support/qt_print.h"
#include "vote/forms.h"
#include "vote/vote_close.h"

#include <map>

using namespace tallix;
using tallix::testing::ControllerTest;

namespace {

class FakeVotesCast final : public VotesCastForm {
public:
    void ShowBaseErrorMessage(short base, const QString& m) override { errors.push_back({base, m}); }
    int BaseIndicatorCount() const override { return 2; }
    qint32 BaseIndicatorColour(int i) const override { return colours.count(i) ? colours.at(i) : 0; }
    void SetBaseIndicatorColour(int i, qint32 c) override { colours[i] = c; }
    void ShowBaseIndicator(int i) override { shown.insert(i); }
    void LogBaseResponded(short) override { ++responded; }
    void SetCounterLabel(const QString& c, int) override { label = c; }

    std::vector<std::pair<short, QString>> errors;
    std::map<int, qint32> colours;
    std::set<int> shown;
    int responded = 0;
    QString label;
};

TEST_F(ControllerTest, StartVoteSendsTheFourCommandsInOrder)
{
    ctx.Quilmark_Display = 0;
    EXPECT_TRUE(comms.StartVote());
    EXPECT_EQ(link.sent, QStringList({"options=4", "StartFrom=1", "QUILMARKdisplay=0", "StartVote"}));
    EXPECT_GT(comms.voteStartTimer, 0.0f);
}

TEST_F(ControllerTest, MakeModeTalksToNobody)
{
    ctx.makeMode = true;
    EXPECT_FALSE(comms.StartVote());
    comms.EndVote();
    comms.VoteLoaded();
    EXPECT_TRUE(link.sent.isEmpty());
    EXPECT_EQ(link.voteLoadedCount, 0);
}

TEST_F(ControllerTest, ALostControllerIsFatalOnceAndLaterSendsAreDropped)
{
    tallix::testing::ExpectErrorReports reports;
    link.failSends = true;
    EXPECT_THROW(comms.SendCommandToController("options=4"), ProcessExit);
    EXPECT_TRUE(comms.linkLost);
    EXPECT_EQ(exits, 1);
    // The shut-down ran to its end: its own EndVote was dropped rather than failing again.
    ASSERT_EQ(reports.count(), 1) << reports.all().toStdString();
    EXPECT_TRUE(reports.all().contains("Procedure: SendCommandToController"));
    EXPECT_TRUE(tag("tlxActivity").isEmpty()); // a step after that send
    EXPECT_TRUE(link.sent.isEmpty());
    // And so is every later send.
    comms.EndVote();
    EXPECT_EQ(ctx.voteEnded, 1);
    EXPECT_EQ(exits, 1);
    EXPECT_EQ(reports.count(), 1);
}

TEST_F(ControllerTest, TheShutDownDeletesTheTaskThenEndsTheVoteInOneText)
{
    for (const char* action : {"TLXVOTE", "TLXRESHOW"}) {
        link.sent.clear();
        ctx.arg1 = action;
        EXPECT_THROW(FullShutDown(ctx), ProcessExit);
        // A reshow opened no vote, so it has none to close.
        EXPECT_EQ(link.sent, QString(action) == "TLXVOTE" ? QStringList({"DeleteTask=Vote,Voting...\r\nEndVote"})
                                                          : QStringList())
            << action;
    }
}

TEST_F(ControllerTest, ControllerTextIsAppendedAndDecodedAtTheNextPump)
{
    comms.oTLx_FromTLXCtrl("[1;2],");
    comms.oTLx_FromTLXCtrl("[2;3],\r\n");
    EXPECT_EQ(comms.txt_data(), "[1;2],\r\n[2;3],\r\n");
    EXPECT_EQ(ctx.votesCast, 0); // not inside the transport's signal
    run.t.pump.DoEvents();
    EXPECT_EQ(ctx.votesCast, 2);
    EXPECT_TRUE(comms.txt_data().isEmpty());
}

TEST_F(ControllerTest, ReadPortInfoWaitsForTheReplyAfterAVoteHasStarted)
{
    comms.voteStartTimer = float(run.t.clock.secondsSinceMidnight());
    link.onCommand = [this](const QString& c) {
        if (c == "BaseInfo")
            comms.oTLx_FromTLXCtrl("BASETYPE=TALLIX\r\nMAXKEYPADS=50\r\n");
    };
    comms.ReadPortInfo();
    EXPECT_EQ(ctx.BaseType, "TALLIX");
    EXPECT_EQ(ctx.maxKeypads, 50);
    EXPECT_LT(run.t.clock.elapsedMs(), 1000);
}

TEST_F(ControllerTest, ReadPortInfoGivesUpAfterEightSecondsWithNoReply)
{
    comms.voteStartTimer = float(run.t.clock.secondsSinceMidnight());
    comms.ReadPortInfo();
    EXPECT_EQ(comms.chk_WaitingForData, 0);
    EXPECT_TRUE(ctx.BaseType.isEmpty());
    EXPECT_NEAR(run.t.clock.elapsedMs(), 8000, 10);
}

TEST_F(ControllerTest, BaseEventsColourTheIndicatorsOnlyWithTheStatusDisplayOn)
{
    FakeVotesCast form;
    ctx.vCast = &form;
    comms.oTLx_FromTLXCtrlBaseFeedback(0, "ok");
    EXPECT_TRUE(form.colours.empty());
    ctx.ini.showBaseStatusDuringLiveVote = true;
    comms.oTLx_FromTLXCtrlBaseFeedback(0, "ok");
    EXPECT_EQ(form.colours[0], 0xC0FFC0);
    comms.oTLx_FromTLXCtrlBaseFeedback(0, "ok");
    EXPECT_EQ(form.colours[0], 0x80FF80);
    comms.oTLx_FromTLXCtrlBaseFeedback(5, "beyond"); // no indicator: nothing, no failure
    comms.oTLx_FromTLXCtrlBaseError(1, "lost");
    EXPECT_EQ(form.colours[1], 255);
    EXPECT_EQ(form.errors.size(), 1u);
    comms.oTLx_FromCtrlFormBaseStationStartVoteCount(9);
    EXPECT_EQ(form.shown, (std::set<int>{0, 1}));
    ctx.vCast = nullptr;
}

TEST_F(ControllerTest, AllowedVotesFromTheControllerAreEchoed)
{
    comms.setTxt_allowedVotes("3");
    EXPECT_EQ(link.sent, QStringList({"PCAOPTIONS=3"}));
}

} // namespace
