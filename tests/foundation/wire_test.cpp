#include "foundation/environment.h"
#include "foundation/wire/controller_socket.h"
#include "foundation/wire/json_lines.h"

#include <QDir>
#include <QFile>
#include <QJsonDocument>
#include <QLocalServer>
#include <QLocalSocket>
#include <QTemporaryDir>
#include <gtest/gtest.h>

#include <sys/stat.h>
#include <unistd.h>

using namespace tallix;

TEST(WireSocketPath, FollowsTheEnvironmentInOrder)
{
    const QString uidFolder = QString("/tmp/tallix-%1").arg(::getuid());
    struct Case {
        QMap<QString, QString> env;
        QString expected;
    } cases[] = {
        {{{"TALLIX_CONTROLLER_SOCKET", "/x/c.sock"}, {"XDG_RUNTIME_DIR", "/run/user/7"}}, "/x/c.sock"},
        {{{"XDG_RUNTIME_DIR", "/run/user/7"}}, "/run/user/7/tallix/controller.sock"},
        {{{"XDG_RUNTIME_DIR", "/run/user/7/"}}, "/run/user/7/tallix/controller.sock"},
        {{}, uidFolder + "/controller.sock"},
    };
    for (const auto& c : cases)
        EXPECT_EQ(ControllerSocketPath(Environment::fromMap(c.env)), c.expected) << c.expected.toStdString();
}

TEST(WirePrivateFolder, CreatesOrTightensAndRefusesWhatIsNotOurFolder)
{
    QTemporaryDir tmp;
    auto mode = [](const QString& p) {
        struct stat st {};
        ::stat(QFile::encodeName(p).constData(), &st);
        return st.st_mode & 0777;
    };

    const QString fresh = tmp.filePath("a/b/tallix");
    EXPECT_EQ(EnsurePrivateFolder(fresh), "");
    EXPECT_EQ(mode(fresh), 0700u);

    const QString loose = tmp.filePath("loose");
    QDir().mkdir(loose);
    ::chmod(QFile::encodeName(loose).constData(), 0755);
    EXPECT_EQ(EnsurePrivateFolder(loose), "");
    EXPECT_EQ(mode(loose), 0700u);

    const QString link = tmp.filePath("link");
    QFile::link(loose, link);
    EXPECT_NE(EnsurePrivateFolder(link), "");

    const QString file = tmp.filePath("file");
    QFile f(file);
    ASSERT_TRUE(f.open(QIODevice::WriteOnly));
    f.close();
    EXPECT_NE(EnsurePrivateFolder(file), "");
}

TEST(WireLineDecoder, BuffersPartialLinesAndDropsOnlyTheMalformedOnes)
{
    JsonLineDecoder d;
    // A text with CR LF inside and a multi-byte character split across reads.
    const QByteArray good = EncodeJsonLine(wire::FromTLXCtrl(QString::fromUtf8("[1;3],\r\nÄ")));
    const qsizetype cut = good.indexOf("\xc3") + 1;

    EXPECT_TRUE(d.feed(good.left(cut)).isEmpty());
    EXPECT_GT(d.pendingBytes(), 0);
    auto lines = d.feed(good.mid(cut) + "not json\n[1,2]\n\n{\"command\":\"EndVote\"}\r\n{\"comm");
    ASSERT_EQ(lines.size(), 4);
    EXPECT_TRUE(lines[0].ok());
    EXPECT_EQ(lines[0].message.value("text").toString(), QString::fromUtf8("[1;3],\r\nÄ"));
    EXPECT_FALSE(lines[1].ok());
    EXPECT_FALSE(lines[2].ok()); // valid JSON, but not an object
    EXPECT_EQ(lines[3].message.value("command").toString(), "EndVote");
    lines = d.feed("and\":\"StartVote\"}\n");
    ASSERT_EQ(lines.size(), 1);
    EXPECT_EQ(lines[0].message.value("command").toString(), "StartVote");
}

TEST(WireLineDecoder, AnOverlongLineIsReportedOnceAndTheStreamRecovers)
{
    JsonLineDecoder d(64);
    auto lines = d.feed(QByteArray(100, 'x'));
    ASSERT_EQ(lines.size(), 1);
    EXPECT_FALSE(lines[0].ok());
    EXPECT_TRUE(d.feed(QByteArray(100, 'y')).isEmpty());
    lines = d.feed("zzz\n{\"notify\":\"VoteLoaded\"}\n");
    ASSERT_EQ(lines.size(), 1);
    EXPECT_EQ(lines[0].message.value("notify").toString(), "VoteLoaded");
}

TEST(WireChannel, DeliversLinesAndFailsSendOncePeerIsGone)
{
    QTemporaryDir tmp;
    const QString path = tmp.filePath("t.sock");
    QLocalServer server;
    ASSERT_TRUE(server.listen(path));
    QLocalSocket client;
    client.connectToServer(path);
    ASSERT_TRUE(client.waitForConnected(2000));
    ASSERT_TRUE(server.waitForNewConnection(2000));
    QLocalSocket* peer = server.nextPendingConnection();

    JsonLineChannel channel(&client);
    QList<QJsonObject> got;
    QStringList bad;
    QObject::connect(&channel, &JsonLineChannel::received, [&](const QJsonObject& m) { got.append(m); });
    QObject::connect(&channel, &JsonLineChannel::malformed, [&](const QString& r) { bad.append(r); });

    peer->write("{oops\n" + EncodeJsonLine(wire::StartVoteCount(3)));
    peer->flush();
    for (int i = 0; i < 200 && got.isEmpty(); ++i)
        client.waitForReadyRead(10);
    ASSERT_EQ(got.size(), 1);
    EXPECT_EQ(got[0].value("count").toInt(), 3);
    EXPECT_EQ(bad.size(), 1);

    // A burst of 10,000 records is one long line that arrives over many reads.
    QString burst;
    for (int k = 1; k <= 10'000; ++k)
        burst += QString("[%1;%2],").arg(k).arg(k % 4 + 1);
    burst += "\r\n";
    peer->write(EncodeJsonLine(wire::FromTLXCtrl(burst)));
    peer->flush();
    for (int i = 0; i < 500 && got.size() < 2; ++i) {
        peer->waitForBytesWritten(10);
        client.waitForReadyRead(10);
    }
    ASSERT_EQ(got.size(), 2);
    EXPECT_EQ(got[1].value("text").toString(), burst);

    EXPECT_TRUE(channel.send(wire::Command("options=4")));
    // The very next send fails, before any event has told the client of the loss.
    peer->abort();
    EXPECT_FALSE(channel.send(wire::Command("EndVote")));
    EXPECT_FALSE(channel.lastError().isEmpty());
}
