// The voting module's side of the link against the real controller stand-in, over its
// real socket. These run in real time, each bounded to a few seconds.

#include "controller/comms.h"
#include "controller/socket_controller_link.h"
#include "foundation/clock.h"
#include "foundation/event_pump.h"
#include "host/deck_host.h"
#include "support/error_reports.h"
#include "support/test_context.h"

#include <QDeadlineTimer>
#include <QFileInfo>
#include <QThread>
#include <QProcess>
#include <QTemporaryDir>

#include <gtest/gtest.h>

using namespace tallix;

namespace {

class RealController : public ::testing::Test {
protected:
    QTemporaryDir dir;
    QProcess controller;
    tallix::testing::TestRun run;
    RunContext& ctx = run.ctx;
    SystemClock clock;
    QtEventPump pump;
    host::MemoryHost ppt{1};
    SocketControllerLink link;
    std::unique_ptr<Comms> comms;
    int exits = 0;

    void SetUp() override
    {
        ctx.oPPT = &ppt;
        ctx.oPres = ppt.ActivePresentation();
        ctx.currentSlide = 1;
        ctx.arg1 = QStringLiteral("TLXVOTE");
        ctx.oPres->GetTags()->Add("tlxActivity", "1");
        tallix::testing::TestServices::write(
            dir.filePath("tlxctrl.ini"), "[Controller]\nMaxKeypads=10\n[Base0]\nType=TALLIX\nLow=1\nHigh=10\n");
        ctx.clock = &clock;
        ctx.pump = &pump;
        ctx.env.set("XDG_RUNTIME_DIR", dir.filePath("xdg"));
        ctx.env.set("TALLIX_CONTROLLER_SOCKET", dir.filePath("c.sock"));
        ctx.terminator = [this](int code) {
            ++exits;
            throw ProcessExit{code};
        };
    }

    void TearDown() override
    {
        comms.reset();
        if (controller.state() != QProcess::NotRunning) {
            controller.kill();
            controller.waitForFinished(2000);
        }
    }

    void startController(const QByteArray& script)
    {
        tallix::testing::TestServices::write(dir.filePath("script.txt"), script);
        QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
        env.insert("TALLIX_CONTROLLER_SOCKET", dir.filePath("c.sock"));
        env.insert("XDG_RUNTIME_DIR", dir.filePath("xdg"));
        controller.setProcessEnvironment(env);
        controller.start(TALLIX_BINARY_DIR "/bin/tlxctrl",
                         {"--config", dir.filePath("tlxctrl.ini"), "--script", dir.filePath("script.txt"),
                          "--idle-exit", "20"});
        ASSERT_TRUE(controller.waitForStarted(3000));
        // Connect only once it listens, so the link never starts a stand-in of its own.
        const QDeadlineTimer by(5000);
        while (!QFileInfo::exists(dir.filePath("c.sock")) && !by.hasExpired())
            QThread::msleep(10);
        ASSERT_TRUE(QFileInfo::exists(dir.filePath("c.sock")));
    }

    void connectAndLoad()
    {
        const QString failure = link.Connect(ctx.env, TALLIX_BINARY_DIR "/bin", 3000);
        ASSERT_TRUE(failure.isEmpty()) << failure.toStdString();
        comms = std::make_unique<Comms>(ctx, link);
        ctx.comms = comms.get();
        comms->Form_Load();
        ASSERT_TRUE(pumpUntil([&] { return ctx.maxKeypads == 10; })) << "no BaseInfo reply";
    }

    template <class Done>
    bool pumpUntil(Done done, int ms = 5000)
    {
        const QDeadlineTimer by(ms);
        while (!done() && !by.hasExpired())
            pump.WaitForEvents(20);
        return done();
    }
};

TEST_F(RealController, ScriptedRecordsLandInVotes)
{
    startController("0.1 [1;2],[2;3],\\r\\n\n0.2 [3;9],[4;1],\\r\\n\n");
    connectAndLoad();
    EXPECT_EQ(ctx.BaseType, "TALLIX");
    ctx.optionCount = 4;
    ctx.startFrom = 1;
    ctx.controllerVoteType = "9";
    ResetVoteArrays(ctx);
    ASSERT_TRUE(comms->StartVote());
    ASSERT_TRUE(pumpUntil([&] { return ctx.votesCast == 3; }));
    EXPECT_EQ(ctx.votes(0), "2");
    EXPECT_EQ(ctx.votes(1), "3");
    EXPECT_EQ(ctx.votes(2), "-1"); // 9 is beyond four options
    EXPECT_EQ(ctx.votes(3), "1");
    // The room had no active-keypads record: every keypad of the base is active now.
    EXPECT_EQ(ctx.oPres->GetTags()->Item("ActiveKeypads"), "1,2,3,4,5,6,7,8,9,10");
    comms->EndVote();
    EXPECT_EQ(exits, 0);
}

TEST_F(RealController, AControllerThatDiesMidVoteEndsTheRunWithAReport)
{
    startController("0.1 [1;2],\\r\\n\n0.3 !die\n");
    connectAndLoad();
    ctx.controllerVoteType = "9";
    ctx.optionCount = 4;
    ctx.startFrom = 1;
    ResetVoteArrays(ctx);
    ASSERT_TRUE(comms->StartVote());
    ASSERT_TRUE(pumpUntil([&] { return ctx.votesCast == 1; }));
    ASSERT_TRUE(controller.waitForFinished(3000));
    pumpUntil([&] { return !link.connected(); }, 2000);
    tallix::testing::ExpectErrorReports reports;
    EXPECT_THROW(comms->SendCommandToController("VOTE-STATUS:Votes Cast: 1"), ProcessExit);
    EXPECT_EQ(exits, 1);
    EXPECT_TRUE(comms->linkLost);
    // One report, and the shut-down ran to its end past its own dropped send.
    ASSERT_EQ(reports.count(), 1) << reports.all().toStdString();
    EXPECT_TRUE(reports.all().contains("Procedure: SendCommandToController"));
    EXPECT_TRUE(ctx.oPres->GetTags()->Item("tlxActivity").isEmpty());
}

} // namespace
