#include "controller/socket_controller_link.h"
#include "foundation/environment.h"
#include "support/qt_print.h"

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QLocalServer>
#include <QLocalSocket>
#include <QTemporaryDir>

#include <gtest/gtest.h>

using namespace tallix;

namespace {

TEST(SocketControllerLink, MalformedLinesAndUnknownEventsAreDroppedAndTheRestGoesOn)
{
    QTemporaryDir dir;
    QLocalServer server;
    ASSERT_TRUE(server.listen(dir.filePath("c.sock")));
    SocketControllerLink link;
    QStringList texts;
    QStringList allowed;
    int malformed = 0;
    link.FromTLXCtrl = [&](const QString& t) { texts << t; };
    link.AllowedVotes = [&](const QString& t) { allowed << t; };
    link.onMalformed = [&](const QString&) { ++malformed; };
    const QString failure =
        link.Connect(Environment::fromMap({{"TALLIX_CONTROLLER_SOCKET", dir.filePath("c.sock")}}), dir.path());
    ASSERT_TRUE(failure.isEmpty()) << failure.toStdString();
    ASSERT_TRUE(server.waitForNewConnection(2000));
    QLocalSocket* controller = server.nextPendingConnection();
    controller->write("{not json\n"
                      "{\"event\": \"Frobnicate\", \"text\": \"ignored\"}\n"
                      "{\"item\": \"somethingElse\", \"text\": \"ignored\"}\n"
                      "{\"event\": \"FromTLXCtrl\", \"text\": \"[1;2],\\r\\n\", \"newField\": 7}\n"
                      "{\"item\": \"txt_allowedVotes\", \"text\": \"3\"}\n");
    controller->flush();
    const QDeadlineTimer by(3000);
    while (allowed.isEmpty() && !by.hasExpired())
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents, 20);
    EXPECT_EQ(texts, QStringList({"[1;2],\r\n"}));
    EXPECT_EQ(allowed, QStringList({"3"}));
    EXPECT_EQ(malformed, 1);
    EXPECT_NO_THROW(link.SendCommand("options=4"));
}

} // namespace
