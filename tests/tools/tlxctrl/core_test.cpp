#include "controller_core.h"
#include "record_check.h"
#include "text_answers.h"

#include "foundation/clock.h"
#include "foundation/wire/json_lines.h"

#include <QFile>
#include <QJsonArray>
#include <QRegularExpression>
#include <QSet>
#include <QTemporaryDir>
#include <gtest/gtest.h>

using namespace tallix;

namespace {

ControllerConfig twoBases()
{
    ControllerConfig c;
    c.bases = {BaseConfig{0, "TALLIX", 0, 1, 20, true}, BaseConfig{1, "TALLIX", 100, 1, 20, true},
               BaseConfig{2, "m7", 200, 1, 20, false}};
    return c;
}

struct Harness {
    explicit Harness(CoreOptions options = {}, ControllerConfig config = twoBases())
        : log(clock, dir.filePath("tlxctrl.log")), core(config, options, clock, log)
    {
        core.setBroadcast([this](const QJsonObject& e) { events.append(e); });
        core.setQuitHandler([this] { ++quits; });
        core.clientCountChanged(1);
    }

    void send(const QString& command, QJsonObject extra = {})
    {
        extra.insert(wire::kCommand, command);
        core.handleMessage(extra, [this](const QJsonObject& r) { replies.append(r); });
    }
    void sendAll(const QStringList& commands)
    {
        for (const QString& c : commands)
            send(c);
    }

    QList<QJsonObject> take(const QString& event)
    {
        QList<QJsonObject> out, rest;
        for (const auto& e : events)
            (e.value(wire::kEvent).toString() == event ? out : rest).append(e);
        events = rest;
        return out;
    }
    QStringList texts()
    {
        QStringList out;
        for (const auto& e : take(wire::kFromTLXCtrl))
            out.append(e.value(wire::kText).toString());
        return out;
    }
    QString logText() const
    {
        QFile f(dir.filePath("tlxctrl.log"));
        return f.open(QIODevice::ReadOnly) ? QString::fromUtf8(f.readAll()) : QString();
    }

    ManualClock clock;
    QTemporaryDir dir;
    CommandLog log;
    ControllerCore core;
    QList<QJsonObject> events;
    QList<QJsonObject> replies;
    int quits = 0;
};

} // namespace

TEST(TlxctrlCore, BaseInfoIsAnsweredToTheAskerOnly)
{
    Harness h;
    h.send("BaseInfo");
    ASSERT_EQ(h.replies.size(), 1);
    EXPECT_EQ(h.replies[0].value(wire::kEvent).toString(), wire::kFromTLXCtrl);
    EXPECT_EQ(h.replies[0].value(wire::kText).toString(), BuildBaseInfoReply(twoBases()));
    EXPECT_TRUE(h.events.isEmpty());
}

TEST(TlxctrlCore, BasesReportAndBeatOnlyWhileAVoteIsOpen)
{
    Harness h;
    h.clock.advanceMs(2000);
    EXPECT_TRUE(h.events.isEmpty());

    h.send("StartVote");
    const auto count = h.take(wire::kStartVoteCount);
    ASSERT_EQ(count.size(), 1);
    EXPECT_EQ(count[0].value(wire::kCount).toInt(), 2); // the spare base is not in use

    h.clock.advanceMs(1000);
    const auto beats = h.take(wire::kBaseFeedback);
    ASSERT_EQ(beats.size(), 4);
    QMap<int, int> perBase;
    for (const auto& b : beats)
        ++perBase[b.value(wire::kBase).toInt()];
    EXPECT_EQ(perBase, (QMap<int, int>{{0, 2}, {1, 2}}));

    h.send("EndVote");
    h.clock.advanceMs(2000);
    EXPECT_TRUE(h.events.isEmpty());
}

TEST(TlxctrlCore, ABeatOfNoneLeavesTheBasesSilentBesideTheScript)
{
    CoreOptions o;
    o.heartbeatMs = 0;
    o.script = ParseVoteScript("0.5 [1;2],\\r\\n\n").entries;
    Harness h(o);
    h.send("StartVote");
    h.clock.advanceMs(5000);
    EXPECT_TRUE(h.take(wire::kBaseFeedback).isEmpty());
    EXPECT_EQ(h.texts(), QStringList({"[1;2],\r\n"}));
}

TEST(TlxctrlCore, TheShutDownTextEndsTheVoteInEitherOrder)
{
    for (const QString text : {"DeleteTask=Vote,Voting...\r\nEndVote", "EndVote\r\nDeleteTask=Vote,Voting..."}) {
        Harness h;
        h.sendAll({"options=4", "StartVote"});
        ASSERT_TRUE(h.core.voteOpen());
        h.send(text);
        EXPECT_FALSE(h.core.voteOpen());
        EXPECT_EQ(h.core.setup().options, 0); // the next vote starts from scratch
        h.events.clear();
        h.clock.advanceMs(1000);
        EXPECT_TRUE(h.events.isEmpty());
        EXPECT_FALSE(h.logText().contains("unknown command"));
    }
}

TEST(TlxctrlCore, TheScriptReplaysAfterEveryStartVoteAndWaitsOutAPause)
{
    CoreOptions o;
    o.script = ParseVoteScript("0.5 [1;2],\\r\\n\n1 !baseerror 1 Base 1 lost\n1.5 !allowedvotes 1,3\n").entries;
    Harness h(o);

    h.send("StartVote");
    h.clock.advanceMs(499);
    EXPECT_TRUE(h.texts().isEmpty());
    h.clock.advanceMs(1);
    EXPECT_EQ(h.texts(), QStringList{"[1;2],\r\n"});

    h.clock.advanceMs(200);
    h.send("PAUSEVOTE");
    h.clock.advanceMs(5000);
    EXPECT_TRUE(h.take(wire::kBaseError).isEmpty());
    h.send("RESUMEVOTE");
    h.clock.advanceMs(299);
    EXPECT_TRUE(h.take(wire::kBaseError).isEmpty());
    h.clock.advanceMs(1);
    const auto errors = h.take(wire::kBaseError);
    ASSERT_EQ(errors.size(), 1);
    EXPECT_EQ(errors[0].value(wire::kBase).toInt(), 1);
    EXPECT_EQ(errors[0].value(wire::kMessage).toString(), "Base 1 lost");
    h.clock.advanceMs(500);
    h.events.erase(std::remove_if(h.events.begin(), h.events.end(),
                                  [](const QJsonObject& e) { return e.contains(wire::kEvent); }),
                   h.events.end());
    ASSERT_EQ(h.events.size(), 1);
    EXPECT_EQ(h.events[0], wire::ItemText("txt_allowedVotes", "1,3"));

    h.send("EndVote");
    h.send("StartVote");
    h.clock.advanceMs(500);
    EXPECT_EQ(h.texts(), QStringList{"[1;2],\r\n"});
}

TEST(TlxctrlCore, BoundScriptLinesPlayOnlyAfterTheirStartVote)
{
    CoreOptions o;
    o.heartbeatMs = 0;
    o.script = ParseVoteScript("0.1 every\n"
                               "@2 0.2 second\n"
                               "@3 0.3 third\n"
                               "@3 0.05 third early\n")
                   .entries;
    Harness h(o);
    // A series opens the vote again for each selection, without an EndVote between.
    const auto openSelection = [&](int n) { h.sendAll({"options=3", QString("StartFrom=%1").arg(3 * n + 1), "StartVote"}); };

    openSelection(0);
    h.clock.advanceMs(1000);
    EXPECT_EQ(h.texts(), QStringList{"every"});

    openSelection(1);
    h.clock.advanceMs(1000);
    EXPECT_EQ(h.texts(), (QStringList{"every", "second"}));

    openSelection(2);
    h.clock.advanceMs(100);
    EXPECT_EQ(h.texts(), (QStringList{"third early", "every"}));
    h.send("EndVote"); // before "third" was due

    h.send("StartVote");
    h.clock.advanceMs(1000);
    EXPECT_EQ(h.texts(), QStringList{"every"});
    h.send("EndVote");

    // Each closing counts the lines of its own opening.
    static const QRegularExpression counts("vote opened \\(StartVote (\\d+)\\)|(\\d+ of \\d+) script lines sent");
    QStringList seen;
    for (auto it = counts.globalMatch(h.logText()); it.hasNext();) {
        const auto m = it.next();
        seen << (m.hasCaptured(1) ? "open " + m.captured(1) : m.captured(2));
    }
    EXPECT_EQ(seen.join(", ").toStdString(), "open 1, 1 of 1, open 2, 2 of 2, open 3, 2 of 3, open 4, 1 of 1");
}

TEST(TlxctrlCore, BadInputIsLoggedAndServiceGoesOn)
{
    Harness h;
    h.core.handleMalformed("malformed JSON line: {oops");
    h.send("Frobnicate");
    h.send("options=four");
    h.send("NEXTSLIDE,7");
    h.core.handleMessage({{wire::kCommand, 42}}, {});
    h.core.handleMessage({{"hello", "there"}}, {});
    h.core.handleMessage({{wire::kNotify, "VoteLoaded"}}, {});
    h.send("BaseInfo");
    EXPECT_EQ(h.replies.size(), 1);
    EXPECT_EQ(h.quits, 0);

    const QString log = h.logText();
    for (const char* expected : {"dropped: malformed JSON line", "command Frobnicate", "unknown command ignored: Frobnicate",
                                 "bad value ignored: options=four", "command NEXTSLIDE,7", "\"command\" is not a text",
                                 "ignored a message with no command", "notify VoteLoaded", "command BaseInfo"})
        EXPECT_TRUE(log.contains(expected)) << expected;
    // Every line carries its time stamp.
    static const QRegularExpression stamp("^\\d{4}-\\d\\d-\\d\\d \\d\\d:\\d\\d:\\d\\d\\.\\d{3} ");
    for (const QString& line : log.split('\n', Qt::SkipEmptyParts))
        EXPECT_TRUE(stamp.match(line).hasMatch()) << line.toStdString();
}

TEST(TlxctrlCore, ExitsAfterTenMinutesWithoutAClientOnly)
{
    Harness h;
    h.clock.advanceSeconds(3600);
    EXPECT_EQ(h.quits, 0);

    h.sendAll({"options=4", "StartVote"});
    h.core.clientCountChanged(0); // the vote process went away mid-vote
    EXPECT_FALSE(h.core.voteOpen());
    h.clock.advanceSeconds(599);
    h.core.clientCountChanged(1);
    h.core.clientCountChanged(0);
    h.clock.advanceSeconds(599);
    EXPECT_EQ(h.quits, 0);
    h.clock.advanceSeconds(1);
    EXPECT_EQ(h.quits, 1);
}

TEST(TlxctrlCore, QuitControlEndsTheService)
{
    Harness h;
    h.core.handleMessage({{wire::kControl, "quit"}}, {});
    EXPECT_EQ(h.quits, 1);
}

namespace {

struct SimCase {
    const char* name;
    QStringList commands;
};

CoreOptions simulating(int voters, double rate, quint32 seed = 0, SimulatedRoom room = {})
{
    CoreOptions o;
    room.voters = voters;
    room.rate = rate;
    o.simulate = room;
    o.seed = seed;
    return o;
}

} // namespace

TEST(TlxctrlSimulator, EveryRecordIsValidForWhatWasAnnounced)
{
    const SimCase cases[] = {
        {"single", {"options=4", "StartFrom=1", "VoteType=9"}},
        {"single from 0 with abstain", {"ABSTAIN=True", "options=5", "StartFrom=0", "VoteType=9"}},
        {"flags", {"options=6", "StartFrom=1", "Limits=3", "VoteType=3"}},
        {"list", {"options=5", "StartFrom=1", "Limits=2", "VoteType=5"}},
        {"list type 1", {"options=3", "StartFrom=0", "Limits=3", "VoteType=1"}},
        {"rating", {"options=5", "StartFrom=1", "Limits=4", "VoteType=6"}},
        {"rating of one item", {"options=9", "StartFrom=1", "Limits=1", "VoteType=6"}},
        {"digit selections", {"options=8", "StartFrom=1", "Limits=3", "VoteType=99"}},
        {"star selections", {"options=15", "StartFrom=1", "Limits=4", "VoteType=12"}},
        {"numbered list", {"options=20", "StartFrom=1", "VoteType=99", "limits=9", "CPPOptions=1"}},
        {"free number", {"options=10", "StartFrom=1", "VoteType=11", "CPPOptions=1", "Limits=9"}},
        {"free number, no options", {"VoteType=99", "CPPOptions=1", "Limits=9"}},
        {"text", {"VoteType=7"}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        Harness h(simulating(30, 100, 7));
        h.sendAll(c.commands);
        const VoteSetup setup = h.core.setup();
        h.send("StartVote");
        h.clock.advanceMs(2000);

        QSet<int> keypads;
        const QList<int> roomList = twoBases().roomKeypads();
        const QSet<int> room(roomList.begin(), roomList.end());
        const QStringList texts = h.texts();
        for (const QString& text : texts) {
            QString error;
            const auto records = test::ParseRecords(text, error);
            ASSERT_TRUE(error.isEmpty()) << error.toStdString();
            if (setup.voteType == "6") {
                EXPECT_EQ(records.size(), 1) << "a rating text carries one keypad";
            }
            for (const auto& r : records) {
                EXPECT_EQ(test::CheckValue(setup, r.value), "") << r.value.toStdString();
                EXPECT_TRUE(room.contains(r.keypad)) << r.keypad;
                EXPECT_FALSE(keypads.contains(r.keypad)) << "keypad voted twice: " << r.keypad;
                keypads.insert(r.keypad);
            }
        }
        EXPECT_EQ(keypads.size(), 30);
    }
}

TEST(TlxctrlSimulator, ABurstIsOneTextWithALinePerBase)
{
    Harness h(simulating(40, 50, 3)); // five records every 100 ms
    h.sendAll({"options=4", "StartVote"});
    h.clock.advanceMs(100);
    QStringList texts = h.texts();
    ASSERT_EQ(texts.size(), 1);
    h.clock.advanceMs(10'000);
    texts += h.texts();
    EXPECT_EQ(texts.size(), 8);

    const ControllerConfig config = twoBases();
    int records = 0;
    for (const QString& text : texts) {
        QString error;
        const auto parsed = test::ParseRecords(text, error);
        ASSERT_TRUE(error.isEmpty()) << error.toStdString();
        EXPECT_EQ(parsed.size(), 5);
        records += int(parsed.size());
        QMap<int, int> baseOfLine;
        for (const auto& r : parsed) {
            const int base = config.baseOfKeypad(r.keypad);
            EXPECT_EQ(baseOfLine.value(r.line, base), base) << "a line mixes bases: " << text.toStdString();
            baseOfLine[r.line] = base;
        }
        EXPECT_EQ(QSet<int>(baseOfLine.begin(), baseOfLine.end()).size(), baseOfLine.size()) << "a base has two lines";
    }
    EXPECT_EQ(records, 40);
}

TEST(TlxctrlSimulator, OnlyActiveKeypadsVoteAndSilenceWithoutOptions)
{
    for (const QJsonValue& list : {QJsonValue("3,105,7,999"), QJsonValue(QJsonArray{3, 105, 7, 999})}) {
        Harness h(simulating(10, 100));
        h.send("ReadActiveKeypads", {{wire::kActiveKeypads, list}});
        h.sendAll({"options=2", "StartVote"});
        h.clock.advanceMs(1000);
        QSet<int> voted;
        for (const QString& text : h.texts()) {
            QString error;
            for (const auto& r : test::ParseRecords(text, error))
                voted.insert(r.keypad);
        }
        EXPECT_EQ(voted, (QSet<int>{3, 7, 105})); // 999 is in no base
    }

    Harness h(simulating(10, 100));
    h.send("StartVote");
    h.clock.advanceMs(1000);
    EXPECT_TRUE(h.texts().isEmpty());
    EXPECT_TRUE(h.logText().contains("simulated keypads stay silent: no options announced"));
}

namespace {

// A hall: 150 keypads on one base, 100 on another.
ControllerConfig hall()
{
    ControllerConfig c;
    c.bases = {BaseConfig{0, "GrandHub", 0, 1, 150, true}, BaseConfig{1, "GrandHub", 200, 1, 100, true}};
    return c;
}

// Opens the vote, lets the room finish and returns its records, burst by burst.
QList<QList<test::Record>> runVote(Harness& h, const QStringList& commands)
{
    h.sendAll(commands);
    h.send("StartVote");
    h.clock.advanceMs(10'000);
    QList<QList<test::Record>> bursts;
    for (const QString& text : h.texts()) {
        QString error;
        bursts.append(test::ParseRecords(text, error));
        EXPECT_TRUE(error.isEmpty()) << error.toStdString();
    }
    return bursts;
}

} // namespace

TEST(TlxctrlSimulator, AHallTypesNumbersOfUpToLimitsDigits)
{
    const struct {
        const char* name;
        QStringList commands;
        const char* typed; // captures the digits before any point
        int digits;
    } cases[] = {
        {"whole", {"options=4", "StartFrom=1", "VoteType=11", "CPPOptions=1", "Limits=3"}, "^-?(0|[1-9][0-9]*)$", 3},
        {"two decimals", {"options=4", "VoteType=99", "CPPOptions=1", "Limits=4"}, "^-?(0|[1-9][0-9]*)\\.[0-9]{2}$", 4},
        {"whole, no Limits", {"VoteType=11", "CPPOptions=1"}, "^-?([1-9])$", 1},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        Harness h(simulating(200, 1000, 11), hall());
        const QRegularExpression typed(c.typed);
        QSet<int> keypads;
        QSet<qsizetype> lengths;
        int records = 0, negatives = 0;
        for (const auto& burst : runVote(h, c.commands))
            for (const auto& r : burst) {
                const auto m = typed.match(r.value);
                ASSERT_TRUE(m.hasMatch()) << r.value.toStdString();
                lengths.insert(m.captured(1).size());
                negatives += r.value.startsWith('-');
                keypads.insert(r.keypad);
                ++records;
            }
        EXPECT_EQ(records, 200);
        EXPECT_EQ(keypads.size(), 200);
        EXPECT_EQ(lengths.size(), c.digits) << "every length up to Limits turns up";
        EXPECT_GT(negatives, 0);
        EXPECT_LT(negatives, 40);
    }
}

TEST(TlxctrlSimulator, AHallAnswersFromTheTextsFileSeveralTimesEach)
{
    QTemporaryDir dir;
    QFile f(dir.filePath("answers.txt"));
    ASSERT_TRUE(f.open(QIODevice::WriteOnly));
    f.write("\xEF\xBB\xBF"
            "Café\r\n\r\nStraße\n   \nTea, please;now\n[日本]\nnaïve\n");
    f.close();
    const TextAnswers texts = LoadTextAnswers(f.fileName());
    ASSERT_TRUE(texts.ok()) << texts.error.toStdString();
    EXPECT_EQ(texts.answers, (QStringList{"Café", "Straße", "Tea please now", "日本", "naïve"}));
    EXPECT_EQ(texts.cleaned, 2);

    SimulatedRoom room;
    room.texts = texts.answers;
    room.multi = 3;
    Harness h(simulating(200, 1000, 5, room), hall());
    QMap<int, QStringList> byKeypad;
    for (const auto& burst : runVote(h, {"options=4", "VoteType=7"})) {
        QSet<int> inBurst;
        for (const auto& r : burst) {
            EXPECT_FALSE(inBurst.contains(r.keypad)) << "two answers of keypad " << r.keypad << " in one burst";
            inBurst.insert(r.keypad);
            EXPECT_TRUE(texts.answers.contains(r.value)) << r.value.toStdString();
            byKeypad[r.keypad].append(r.value);
        }
    }
    EXPECT_EQ(byKeypad.size(), 200);
    int several = 0;
    for (const QStringList& answers : byKeypad) {
        EXPECT_LE(answers.size(), 3);
        EXPECT_EQ(QSet<QString>(answers.begin(), answers.end()).size(), answers.size()) << "a keypad repeated itself";
        several += answers.size() > 1;
    }
    EXPECT_GT(several, 100);
}

TEST(TlxctrlSimulator, ATextsFileWithoutUsableAnswersIsRefused)
{
    const struct {
        QByteArray bytes;
        const char* error;
    } cases[] = {
        {"Tea\n\xC3\x28 bad\n", "a.txt line 2: not UTF-8"},
        {"Tea\r\nCaf\xC3\r\n", "a.txt line 2: not UTF-8"},
        {"\xEF\xBB\xBF\r\n  \n", "a.txt holds no answers"},
        {";,[]\n", "a.txt holds no answers"},
    };
    for (const auto& c : cases)
        EXPECT_EQ(ParseTextAnswers(c.bytes, "a.txt").error.toStdString(), c.error);
    EXPECT_TRUE(LoadTextAnswers("/nonexistent/a.txt").error.startsWith("cannot read /nonexistent/a.txt"));
}
