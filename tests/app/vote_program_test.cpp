// The tallix-vote program end to end: a deck made by tallix-deck, the real controller
// stand-in with a script, an operator script, and the deck written back. These run in
// real time, each bounded to seconds, each in folders of its own.

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

const QString kBin = QStringLiteral(TALLIX_BINARY_DIR "/bin/");

class VoteProgram : public ::testing::Test {
protected:
    QTemporaryDir dir;
    QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
    QProcess controller;

    void SetUp() override
    {
        for (const char* d : {"xdg", "appdata", "allusers", "temp", "home"})
            QDir(dir.path()).mkpath(d);
        QFile::setPermissions(dir.filePath("xdg"), QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
        env.insert("XDG_RUNTIME_DIR", dir.filePath("xdg"));
        env.insert("TALLIX_CONTROLLER_SOCKET", dir.filePath("xdg/controller.sock"));
        env.insert("APPDATA", dir.filePath("appdata"));
        env.insert("ALLUSERSPROFILE", dir.filePath("allusers"));
        env.insert("temp", dir.filePath("temp"));
        env.insert("HOME", dir.filePath("home"));
        env.insert("QT_QPA_PLATFORM", "offscreen");
        env.remove("TALLIX_DECK");
        ASSERT_EQ(run("tallix-deck", {"new", deck(), "--slides", "3"}), 0);
    }

    void TearDown() override
    {
        run("tlxctrl", {"--quit"}, 5000);
        if (controller.state() != QProcess::NotRunning) {
            controller.kill();
            controller.waitForFinished(2000);
        }
    }

    QString deck() const { return dir.filePath("deck.pptx"); }
    QString write(const QString& name, const QByteArray& text)
    {
        QFile f(dir.filePath(name));
        f.open(QIODevice::WriteOnly);
        f.write(text);
        return f.fileName();
    }

    int run(const QString& program, const QStringList& args, int ms = 30000, QString* out = nullptr)
    {
        QProcess p;
        p.setProcessEnvironment(env);
        p.start(kBin + program, args);
        if (!p.waitForFinished(ms)) {
            p.kill();
            p.waitForFinished(2000);
            return -1;
        }
        if (out)
            *out = QString::fromUtf8(p.readAllStandardOutput());
        return p.exitStatus() == QProcess::NormalExit ? p.exitCode() : -2;
    }

    void question(int slide, const QByteArray& settings, const QString& answers = "Red|Green|Blue|Yellow")
    {
        ASSERT_EQ(run("tallix-deck", {"question", deck(), QString::number(slide), "--settings", write("q.xml", settings),
                                      "--answers", answers, "--title", "Favourite colour?"}),
                  0);
    }

    void startController(const QByteArray& script = {})
    {
        controller.setProcessEnvironment(env);
        controller.start(kBin + "tlxctrl", {"--log", dir.filePath("controller.log"), "--script",
                                             write("votes.txt", script), "--idle-exit", "60"});
        ASSERT_TRUE(controller.waitForStarted(3000));
        for (int i = 0; i < 250 && !QFile::exists(dir.filePath("xdg/controller.sock")); ++i)
            QThread::msleep(20);
    }

    // The commands the controller received, in order.
    QStringList commands()
    {
        QFile f(dir.filePath("controller.log"));
        f.open(QIODevice::ReadOnly);
        QStringList out;
        for (const QString& line : QString::fromUtf8(f.readAll()).split('\n')) {
            const qsizetype at = line.indexOf("command ");
            if (at >= 0)
                out << line.mid(at + 8).trimmed();
        }
        return out;
    }

    QJsonObject tags(int slide = 0)
    {
        QString out;
        QStringList args{"tags", deck()};
        if (slide)
            args << QString::number(slide);
        run("tallix-deck", args << "--json", 30000, &out);
        return QJsonDocument::fromJson(out.toUtf8()).object();
    }
};

const QByteArray kFourOptions =
    "<tlxfile><vote_info><vType>0</vType><options>4</options><startFrom>1</startFrom></vote_info>"
    "<graph_info><GraphType>2</GraphType></graph_info></tlxfile>";

TEST_F(VoteProgram, APlainFourOptionVoteTellsTheControllerInOrder)
{
    question(2, kFourOptions);
    startController();
    EXPECT_EQ(run("tallix-vote", {"--deck", deck(), "--operator-script", write("op.txt", "1 key Space\n"),
                                  "TLXVOTE,2"}),
              0);
    const QStringList sent = commands();
    const QStringList order = {"BaseInfo", "GetVoteInfo", "options=4", "StartFrom=1", "VoteType=9",
                               "AnswerText=1. Red|2. Green|3. Blue|4. Yellow", "VoteText=    Vote Now||      1-4"};
    qsizetype from = 0;
    for (const QString& c : order) {
        const qsizetype at = sent.indexOf(c, from);
        ASSERT_GE(at, 0) << c.toStdString() << " missing after position " << from << " in "
                         << sent.join(" / ").toStdString();
        from = at + 1;
    }
}

TEST_F(VoteProgram, ASlideWithoutSettingsRecordsWhyAndEndsInOrder)
{
    startController();
    EXPECT_EQ(run("tallix-vote", {"--deck", deck(), "TLXVOTE,3"}), 0);
    EXPECT_TRUE(tags().value("TLXVOTETERMINATED").toString().startsWith("Unable to load vote info\r\n"));
}

TEST_F(VoteProgram, UnreadableSettingsAreShownAndRecorded)
{
    question(2, kFourOptions);
    ASSERT_EQ(run("tallix-deck", {"tags", deck(), "2", "--set", "tlxVote=<tlxfile><vote_info>"}), 0);
    startController();
    // The operator closes the message box.
    EXPECT_EQ(run("tallix-vote", {"--deck", deck(), "--operator-script", write("op.txt", "1 key Enter\n"),
                                  "TLXVOTE,2"}),
              0);
    EXPECT_TRUE(tags().value("TLXVOTETERMINATED").toString().startsWith("Unable to load vote info\r\n"));
}

TEST_F(VoteProgram, AGroupActionWithoutAShowEndsWithoutARecord)
{
    question(2, kFourOptions);
    startController();
    EXPECT_EQ(run("tallix-vote", {"--deck", deck(), "--no-show", "TLXGROUP,2,3"}), 0);
    EXPECT_FALSE(tags().contains("TLXVOTETERMINATED"));
}

TEST_F(VoteProgram, WithoutADeckItEndsAtOnceWithStatusTwo)
{
    EXPECT_EQ(run("tallix-vote", {"TLXVOTE,2"}), 2);
    EXPECT_EQ(run("tallix-vote", {"--deck", dir.filePath("missing.pptx"), "TLXVOTE,2"}), 2);
    write("notadeck.pptx", "hello");
    EXPECT_EQ(run("tallix-vote", {"--deck", dir.filePath("notadeck.pptx"), "TLXVOTE,2"}), 2);
    EXPECT_EQ(run("tallix-vote", {"--deck", deck(), "--bogus", "TLXVOTE,2"}), 2);
}

} // namespace
