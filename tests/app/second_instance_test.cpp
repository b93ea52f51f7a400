// Two tallix-vote processes on one deck: the second closes the first, whatever the deck
// file says about earlier votes. Real programs in real time, each bounded to seconds, in
// folders of their own.

#include "support/program_sandbox.h"
#include "support/qt_print.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QTemporaryDir>
#include <QThread>

#include <gtest/gtest.h>

namespace {

using tallix::testing::ProgramPath;

const QByteArray kQuestion =
    "<tlxfile><vote_info><vType>0</vType><options>4</options><startFrom>1</startFrom></vote_info>"
    "<graph_info><GraphType>2</GraphType><GraphPlotting>0</GraphPlotting></graph_info></tlxfile>";

class SecondInstance : public tallix::testing::ProgramTest {
protected:
    QProcess first;

    void SetUp() override
    {
        ProgramTest::SetUp();
        question(2, kQuestion);
        ASSERT_TRUE(box.startController(controller, {"--log", dir.filePath("controller.log"), "--script",
                                                     write("votes.txt", ""), "--idle-exit", "60"}));
    }

    void TearDown() override
    {
        if (first.state() != QProcess::NotRunning) {
            first.kill();
            first.waitForFinished(2000);
        }
        ProgramTest::TearDown();
    }

    QStringList voteArgs(const QString& script) const
    {
        return {"--deck", deck(), "--operator-script", script, "TLXVOTE,2"};
    }

    // True once the vote has passed its second-instance step and answers the others.
    bool answering(const QProcess& p, int ms)
    {
        const QString socket = dir.filePath(QStringLiteral("xdg/tallix/vote-%1.sock").arg(p.processId()));
        QElapsedTimer t;
        t.start();
        while (t.elapsed() < ms && p.state() == QProcess::Running) {
            if (QFile::exists(socket))
                return true;
            QThread::msleep(20);
        }
        return false;
    }

    QString presentationTag(const QString& name)
    {
        QString out;
        run("tallix-deck", {"tags", deck(), "--json"}, 30000, &out);
        return QJsonDocument::fromJson(out.toUtf8()).object().value(name.toUpper()).toString();
    }
};

TEST_F(SecondInstance, ASecondVoteClosesTheFirstEvenAfterAnEarlierVoteEndedWithQ)
{
    // An earlier vote ended with q: the deck file keeps its reason.
    ASSERT_EQ(run("tallix-vote", voteArgs(write("quit.txt", "1 key q\n"))), 0);
    ASSERT_TRUE(presentationTag("tlxVoteTerminated").startsWith("Vote finished\r\n"));

    // The first vote stays open: its operator does nothing for a minute.
    first.setProcessEnvironment(env);
    first.start(ProgramPath("tallix-vote"), voteArgs(write("idle.txt", "60 key q\n")));
    ASSERT_TRUE(first.waitForStarted(3000));
    ASSERT_TRUE(answering(first, 15000)) << "the first vote never got going";

    QProcess second;
    second.setProcessEnvironment(env);
    second.start(ProgramPath("tallix-vote"), voteArgs(write("second.txt", "8 key q\n")));
    ASSERT_TRUE(second.waitForStarted(3000));
    // The first goes in order while the second runs on.
    EXPECT_TRUE(first.waitForFinished(10000)) << "two votes ran at once";
    EXPECT_EQ(second.state(), QProcess::Running);
    EXPECT_EQ(first.exitStatus(), QProcess::NormalExit);
    EXPECT_EQ(first.exitCode(), 0);
    ASSERT_TRUE(second.waitForFinished(20000));
    EXPECT_EQ(second.exitCode(), 0);
}

} // namespace
