// The tallix-vote program end to end: a deck made by tallix-deck, the real controller
// stand-in with a script, an operator script, and the deck written back. These run in
// real time, each bounded to seconds, each in folders of its own.

#include "vote_program_fixture.h"
#include "support/qt_print.h"

#include <QDir>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QThread>

#include <gtest/gtest.h>

namespace {


using VoteProgram = tallix::testing::VoteProgramTest;

const QByteArray kFourOptions =
    "<tlxfile><vote_info><vType>0</vType><options>4</options><startFrom>1</startFrom></vote_info>"
    "<graph_info><GraphType>2</GraphType></graph_info></tlxfile>";

TEST_F(VoteProgram, APlainFourOptionVoteTellsTheControllerInOrder)
{
    question(2, kFourOptions);
    startController();
    EXPECT_EQ(run("tallix-vote", {"--deck", deck(), "--operator-script", write("op.txt", "2 key Space\n3 key Space\n"),
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

const QByteArray kCountDown =
    "<tlxfile><vote_info><vType>1</vType><TimeLeft>2</TimeLeft><options>4</options><startFrom>1</startFrom>"
    "</vote_info><graph_info><GraphType>2</GraphType><GraphPlotting>0</GraphPlotting></graph_info></tlxfile>";

QByteArray chartQuestion(int graphType, int options = 4)
{
    return QStringLiteral("<tlxfile><vote_info><vType>0</vType><options>%1</options><startFrom>1</startFrom>"
                          "</vote_info><graph_info><GraphType>%2</GraphType><GraphPlotting>0</GraphPlotting>"
                          "<BarsPerPage>10</BarsPerPage><ShowGraphs>True</ShowGraphs></graph_info></tlxfile>")
        .arg(options)
        .arg(graphType)
        .toUtf8();
}

TEST_F(VoteProgram, ACountUpVoteEndedBySpaceSavesItsLine)
{
    question(2, chartQuestion(2));
    startController("0.2 [1;2],[2;3],[4;1],\\r\\n\n");
    ASSERT_EQ(vote("TLXVOTE,2", "1.5 key Space\n3 key Space\n"), 0);
    const QStringList lines = voteLines(2);
    ASSERT_EQ(lines.size(), 1);
    EXPECT_EQ(tokens(lines[0]).mid(0, 5), QStringList({"2", "3", "-", "1", "-"}));
    EXPECT_EQ(commands().indexOf("StartVote") > commands().indexOf("VoteText=    Vote Now||      1-4"), true);
}

TEST_F(VoteProgram, ACountDownVoteEndsWhenItsTimeIsUp)
{
    question(2, kCountDown);
    startController("0.2 [3;4],\\r\\n\n");
    ASSERT_EQ(vote("TLXVOTE,2", "5 key Space\n"), 0);
    const QStringList lines = voteLines(2);
    ASSERT_EQ(lines.size(), 1);
    EXPECT_EQ(tokens(lines[0]).value(2), "4");
}

TEST_F(VoteProgram, AVoteWithNoVotesSavesNothingAndSaysWhy)
{
    question(2, chartQuestion(2));
    startController();
    // With no votes the first Space only arms the second.
    ASSERT_EQ(vote("TLXVOTE,2", "2 key Space\n3 key Space\n"), 0);
    EXPECT_TRUE(voteLines(2).isEmpty());
    EXPECT_TRUE(tags().value("TLXVOTETERMINATED").toString().startsWith("Vote finished\r\n"));
}

TEST_F(VoteProgram, EscOnASlideWithEarlierVotesKeepsThemAndAddsNone)
{
    question(2, chartQuestion(2));
    const QString earlier = "01 Nov 2026,10:00:00,1;2;3;4;";
    ASSERT_EQ(run("tallix-deck", {"tags", deck(), "2", "--set", "TLXVOTES=" + earlier + "\r\n"}), 0);
    startController("0.2 [1;4],\\r\\n\n");
    ASSERT_EQ(vote("TLXVOTE,2", "1.5 key Escape\n4 key Space\n"), 0);
    EXPECT_EQ(voteLines(2), QStringList({earlier}));
}

TEST_F(VoteProgram, TheKeyboardIsABaseWhoseDigitsAreVotes)
{
    keyboardRoom();
    question(2, chartQuestion(2));
    startController();
    ASSERT_EQ(vote("TLXVOTE,2", "1 key 3\n1.2 key 2\n1.4 key 4\n2.5 key Space\n4 key Space\n"), 0);
    const QStringList lines = voteLines(2);
    ASSERT_EQ(lines.size(), 1);
    EXPECT_EQ(tokens(lines[0]).mid(0, 4), QStringList({"3", "2", "4", "-"}));
}

// --- The chart on the slide

struct ChartKind {
    int graphType;
    const char* name;
};

class ChartOnSlide : public VoteProgram, public ::testing::WithParamInterface<ChartKind> {};

TEST_P(ChartOnSlide, LandsAsTheAgreedPictureOverTheChartArea)
{
    write("appdata/tallix/tlx.ini", "[TALLIX OPTIONS]\nCHART EXPORT FORMAT=PNG\n");
    question(2, chartQuestion(GetParam().graphType));
    const QJsonObject sample = shapeNamed(shapes(2), "tallix chart sample");
    ASSERT_FALSE(sample.isEmpty());
    startController("0.2 [1;2],[2;3],[3;3],\\r\\n\n");
    ASSERT_EQ(vote("TLXVOTE,2", "1.5 key Space\n3.5 key Space\n"), 0);
    const QJsonObject chart = shapeNamed(shapes(2), "tallix chart");
    ASSERT_FALSE(chart.isEmpty()) << GetParam().name;
    EXPECT_EQ(chart.value("kind").toString(), "picture");
    EXPECT_TRUE(chart.value("visible").toBool());
    for (const char* edge : {"left", "top", "width", "height"})
        EXPECT_NEAR(chart.value(edge).toDouble(), sample.value(edge).toDouble(), 1.5) << edge;
    QProcess unzip;
    unzip.start("unzip", {"-Z1", deck()});
    unzip.waitForFinished(10000);
    EXPECT_TRUE(QString::fromUtf8(unzip.readAllStandardOutput()).contains(QRegularExpression("ppt/media/[^\\n]*\\.png")));
}

INSTANTIATE_TEST_SUITE_P(Kinds, ChartOnSlide,
                         ::testing::Values(ChartKind{2, "bar"}, ChartKind{3, "3D bar"}, ChartKind{4, "horizontal bar"},
                                           ChartKind{5, "3D horizontal bar"}, ChartKind{0, "pie"},
                                           ChartKind{1, "3D pie"}, ChartKind{13, "donut"}, ChartKind{14, "3D donut"}));

TEST_F(VoteProgram, ARerunReplacesTheLiveChartAndKeepsTheOthers)
{
    question(2, chartQuestion(2));
    startController("0.2 [1;2],\\r\\n\n");
    ASSERT_EQ(vote("TLXVOTE,2", "1.5 key Space\n3 key Space\n"), 0);
    ASSERT_EQ(vote("TLXVOTE,2", "1.5 key Space\n3 key Space\n"), 0);
    int live = 0;
    for (const QJsonValue& v : shapes(2))
        live += v.toObject().value("name").toString() == "tallix chart";
    EXPECT_EQ(live, 1);
    EXPECT_EQ(voteLines(2).size(), 2);
}

TEST_F(VoteProgram, TwelveOptionsAtTenBarsAPageAddASecondPicture)
{
    // Twelve options need keypads that can send two digits.
    write("appdata/tallix/tlxctrl.ini", "[Controller]\nMaxKeypads=20\n[Base0]\nType=GrandHub\nLow=1\nHigh=20\n");
    question(2, chartQuestion(2, 12), "A|B|C|D|E|F|G|H|I|J|K|L");
    startController("0.3 [1;12],[2;11],[3;1],\\r\\n\n");
    ASSERT_EQ(vote("TLXVOTE,2", "2.5 key Space\n4.5 key Space\n"), 0);
    EXPECT_FALSE(shapeNamed(shapes(2), "tallix chart").isEmpty());
    EXPECT_FALSE(shapeNamed(shapes(2), "tallix chart 2").isEmpty());
    EXPECT_TRUE(tags(2).contains("MULTIDIGITVOTE"));
}

} // namespace
