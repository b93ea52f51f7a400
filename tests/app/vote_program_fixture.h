#pragma once
// The tallix-vote program end to end over a deck of its own: the controller stand-in with a
// script, an operator script, and what tallix-deck reads back from the deck written.

#include "support/program_sandbox.h"

#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

namespace tallix::testing {

class VoteProgramTest : public ProgramTest {
protected:
    explicit VoteProgramTest(int slides = 3) : ProgramTest(slides) {}

    void startController(const QByteArray& script = {})
    {
        ASSERT_TRUE(box.startController(controller, {"--log", dir.filePath("controller.log"), "--script",
                                                     write("votes.txt", script), "--idle-exit", "60"}));
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

    // A slide's tags; slide 0 the presentation's.
    QJsonObject tags(int slide = 0)
    {
        QString out;
        QStringList args{"tags", deck()};
        if (slide)
            args << QString::number(slide);
        run("tallix-deck", args << "--json", 30000, &out);
        return QJsonDocument::fromJson(out.toUtf8()).object();
    }
    // Why the last run ended, as it recorded it.
    QString voteEnd() { return tags().value("TLXVOTETERMINATED").toString(); }

    // The vote lines saved on a slide, as tallix-deck reads them.
    QStringList voteLines(int slide)
    {
        QStringList lines = tags(slide).value("TLXVOTES").toString().split("\r\n");
        lines.removeAll(QString());
        return lines;
    }
    // The keypads' tokens of a saved line: "date,time,tokens..."
    static QStringList tokens(const QString& line) { return line.section(',', 2, 2).split(';'); }

    QJsonArray shapes(int slide)
    {
        QString out;
        run("tallix-deck", {"shapes", deck(), QString::number(slide), "--json"}, 30000, &out);
        return QJsonDocument::fromJson(out.toUtf8()).array();
    }
    static QJsonObject shapeNamed(const QJsonArray& list, const QString& name)
    {
        for (const QJsonValue& v : list)
            if (v.toObject().value("name").toString() == name)
                return v.toObject();
        return {};
    }

    // Twenty keypads on the keyboard base.
    void keyboardRoom()
    {
        write("appdata/tallix/tlxctrl.ini", "[Controller]\nMaxKeypads=20\n[Base0]\nType=KBOARD\nLow=1\nHigh=20\n");
    }
    int vote(const QString& launch, const QByteArray& operatorScript, const QStringList& more = {})
    {
        return run("tallix-vote", QStringList{"--deck", deck(), "--operator-script", write("op.txt", operatorScript)}
                                      << more << launch);
    }
};

} // namespace tallix::testing
