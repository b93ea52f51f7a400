// No vote record is lost to a message box: the real controller stand-in reports a base
// error, sends a record while the box is open and then falls silent, so nothing later
// can carry the record in. Real time, bounded to seconds, in folders of its own.

#include "support/program_sandbox.h"
#include "support/qt_print.h"

#include <QDir>
#include <QFile>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QTemporaryDir>
#include <QThread>

#include <gtest/gtest.h>

namespace {


class LostRecords : public tallix::testing::ProgramTest {
protected:
    LostRecords() : ProgramTest(2) {}


    // No heartbeats: after the script's last line the controller says nothing more.
    void startSilentController(const QByteArray& script)
    {
        ASSERT_TRUE(box.startController(controller, {"--log", dir.filePath("controller.log"), "--script",
                                                     write("votes.txt", script), "--idle-exit", "60", "--heartbeat", "0"}));
    }

    QStringList savedTokens(int slide)
    {
        QString out;
        run("tallix-deck", {"tags", deck(), QString::number(slide), "--json"}, 30000, &out);
        const QString line = QJsonDocument::fromJson(out.toUtf8()).object().value("TLXVOTES").toString();
        return line.section("\r\n", 0, 0).section(',', 2, 2).split(';');
    }
};

TEST_F(LostRecords, ARecordSentWhileTheBaseErrorBoxIsOpenIsSaved)
{
    const QByteArray settings =
        "<tlxfile><vote_info><vType>0</vType><options>4</options><startFrom>1</startFrom></vote_info>"
        "<graph_info><GraphType>2</GraphType><GraphPlotting>0</GraphPlotting></graph_info></tlxfile>";
    question(2, settings);
    startSilentController("0.2 [1;2],[2;3],\\r\\n\n"
                          "0.4 !baseerror 0 Base 0 not responding\n"
                          "0.8 [3;4],\\r\\n\n");
    // The box is answered well after the record came; the vote ends soon after, before
    // anything else could have arrived.
    const QString ops = write("op.txt", "4 key Enter\n4.5 key Space\n6.5 key Space\n");
    ASSERT_EQ(run("tallix-vote", {"--deck", deck(), "--operator-script", ops, "TLXVOTE,2"}), 0);
    EXPECT_EQ(savedTokens(2).mid(0, 4), QStringList({"2", "3", "4", "-"}));
}

} // namespace
