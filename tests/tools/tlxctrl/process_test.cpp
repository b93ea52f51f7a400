// The real program over its real socket: the one test here that runs in real time.

#include "foundation/wire/json_lines.h"

#include <QDeadlineTimer>
#include <QFile>
#include <QLocalSocket>
#include <QProcess>
#include <QTemporaryDir>
#include <QThread>
#include <gtest/gtest.h>

using namespace tallix;

namespace {

void writeFile(const QString& path, const QByteArray& text)
{
    QFile f(path);
    ASSERT_TRUE(f.open(QIODevice::WriteOnly));
    f.write(text);
}

// Never leaves the controller behind, whatever the test's outcome.
struct Reaper {
    QProcess& p;
    ~Reaper()
    {
        if (p.state() != QProcess::NotRunning) {
            p.kill();
            p.waitForFinished(2000);
        }
    }
};

} // namespace

TEST(TlxctrlProcess, ServesAScriptedVoteSurvivesBadLinesAndQuitsWhenTold)
{
    QTemporaryDir dir;
    const QString socketPath = dir.filePath("run/c.sock");
    writeFile(dir.filePath("tlxctrl.ini"), "[Controller]\nMaxKeypads=10\n[Base0]\nType=KBOARD\nLow=1\nHigh=10\n");
    writeFile(dir.filePath("script.txt"), "0.1 [5;2],[6;3],\\r\\n\n0.3 [7;1],\\r\\n\n");

    QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
    env.insert("XDG_RUNTIME_DIR", dir.filePath("xdg"));
    env.insert("TALLIX_CONTROLLER_SOCKET", socketPath);
    env.insert("APPDATA", dir.filePath("appdata"));
    const QString program = TALLIX_BINARY_DIR "/bin/tlxctrl";

    QProcess controller;
    Reaper reaper{controller};
    controller.setProcessEnvironment(env);
    controller.setProcessChannelMode(QProcess::ForwardedChannels);
    controller.start(program, {"--config", dir.filePath("tlxctrl.ini"), "--script", dir.filePath("script.txt"),
                               "--log", dir.filePath("tlxctrl.log"), "--idle-exit", "30"});
    ASSERT_TRUE(controller.waitForStarted(3000));

    QLocalSocket socket;
    const QDeadlineTimer connectBy(5000);
    for (;;) {
        socket.connectToServer(socketPath);
        if (socket.waitForConnected(200))
            break;
        ASSERT_FALSE(connectBy.hasExpired()) << "tlxctrl never listened";
        ASSERT_EQ(controller.state(), QProcess::Running) << "tlxctrl ended early";
        QThread::msleep(20);
    }

    QByteArray out = "{not json\n";
    for (const char* c : {"Frobnicate", "BaseInfo", "options=3", "StartFrom=1", "VoteType=9", "StartVote"})
        out += EncodeJsonLine(wire::Command(c));
    socket.write(out);
    socket.flush();

    JsonLineDecoder decoder;
    QString baseInfo;
    QStringList records;
    const QDeadlineTimer readBy(5000);
    while (records.size() < 2 && !readBy.hasExpired()) {
        socket.waitForReadyRead(100);
        for (const auto& line : decoder.feed(socket.readAll())) {
            ASSERT_TRUE(line.ok()) << line.error.toStdString();
            if (line.message.value(wire::kEvent).toString() != wire::kFromTLXCtrl)
                continue;
            const QString text = line.message.value(wire::kText).toString();
            (text.contains("BASETYPE") ? baseInfo : records.emplaceBack()) = text;
        }
    }
    EXPECT_TRUE(baseInfo.startsWith("BASETYPE=KBOARD\r\n")) << baseInfo.toStdString();
    EXPECT_TRUE(baseInfo.endsWith("MAXKEYPADS=10\r\n")) << baseInfo.toStdString();
    EXPECT_EQ(records, (QStringList{"[5;2],[6;3],\r\n", "[7;1],\r\n"}));

    socket.write(EncodeJsonLine(wire::Command("DeleteTask=Vote,Voting...\r\nEndVote")));
    socket.flush();

    QProcess quit;
    quit.setProcessEnvironment(env);
    quit.start(program, {"--quit"});
    ASSERT_TRUE(quit.waitForFinished(5000));
    EXPECT_EQ(quit.exitCode(), 0);
    ASSERT_TRUE(controller.waitForFinished(5000));
    EXPECT_EQ(controller.exitStatus(), QProcess::NormalExit);
    EXPECT_EQ(controller.exitCode(), 0);
    EXPECT_FALSE(QFile::exists(socketPath));

    QFile log(dir.filePath("tlxctrl.log"));
    ASSERT_TRUE(log.open(QIODevice::ReadOnly));
    const QString text = QString::fromUtf8(log.readAll());
    for (const char* expected : {"dropped: malformed JSON line", "unknown command ignored: Frobnicate", "command StartVote",
                                 "command DeleteTask=Vote,Voting...\\r\\nEndVote", "vote closed (task deleted)",
                                 "control quit", "stopped"})
        EXPECT_TRUE(text.contains(expected)) << expected;
}
