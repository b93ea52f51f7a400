// Series votes end to end: a tallix-deck deck, the keyboard base or the controller
// stand-in, an operator script, the real tallix-vote, and the deck written back.

#include "vote_program_fixture.h"
#include "support/qt_print.h"

#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QRectF>

#include <gtest/gtest.h>

namespace {

QByteArray seriesQuestion(int iterations, int graphType = 2, int displayBy = 0, const QString& more = {},
                          const QString& series = {})
{
    return QStringLiteral("<tlxfile><vote_info><vType>2</vType><options>4</options><startFrom>1</startFrom>"
                          "<Abstain>True</Abstain>%4</vote_info><graph_info><GraphType>%1</GraphType>"
                          "<GraphPlotting>0</GraphPlotting><ShowGraphs>True</ShowGraphs></graph_info>"
                          "<series_vote><Iterations>%2</Iterations><DisplayBy>%3</DisplayBy>%5</series_vote>"
                          "</tlxfile>")
        .arg(graphType)
        .arg(iterations)
        .arg(displayBy)
        .arg(more, series)
        .toUtf8();
}

class SeriesProgram : public tallix::testing::VoteProgramTest {
protected:
    int vote(const QByteArray& operatorScript) { return VoteProgramTest::vote("TLXVOTE,2", operatorScript); }
    QString savedVotes() { return tags(2).value("TLXVOTES").toString(); }
    QStringList voteLines() { return VoteProgramTest::voteLines(2); }
    QJsonArray shapes() { return VoteProgramTest::shapes(2); }
    static QRectF rectOf(const QJsonObject& s)
    {
        return {s.value("left").toDouble(), s.value("top").toDouble(), s.value("width").toDouble(),
                s.value("height").toDouble()};
    }
};

TEST_F(SeriesProgram, KeyboardSelectionsAreSavedALineEachAfterWhatWasThere)
{
    keyboardRoom();
    question(2, seriesQuestion(3));
    const QString earlier = "01 Nov 2026,10:00:00,4;4;4;,1of1\r\n";
    ASSERT_EQ(run("tallix-deck", {"tags", deck(), "2", "--set", "TLXVOTES=" + earlier}), 0);
    startController();
    ASSERT_EQ(vote("1 key 3\n1.2 key 2\n1.4 key z\n2 key Space\n3 key 1\n3.2 key 1\n4 key Space\n5 key g\n7 key Space\n"),
              0);
    const QString all = savedVotes();
    EXPECT_TRUE(all.startsWith(earlier));
    EXPECT_TRUE(all.endsWith("3of3\r\n"));
    const QStringList lines = voteLines();
    ASSERT_EQ(lines.size(), 4);
    QStringList first = tokens(lines[1]);
    ASSERT_EQ(first.size(), 21);   // twenty keypads, each token ending in ";"
    EXPECT_EQ(first.mid(0, 4), QStringList({"3", "2", "X", "-"}));
    EXPECT_EQ(lines[1].section(',', 3), "1of3");
    EXPECT_EQ(tokens(lines[2]).mid(0, 3), QStringList({"1", "1", "-"}));
    EXPECT_EQ(lines[2].section(',', 3), "2of3");
    const QStringList random = tokens(lines[3]);
    for (int k = 0; k < 20; ++k)
        EXPECT_TRUE(QStringList({"1", "2", "3", "4"}).contains(random[k])) << "keypad " << k + 1;
    EXPECT_TRUE(tags(2).value("SEQUENCEVOTE").toString() == "2");
}

TEST_F(SeriesProgram, EachSelectionOpensTheControllersVoteAndARepeatIsTakenBack)
{
    question(2, seriesQuestion(3, 2, 0, {}, "<Exclusive>True</Exclusive>"));
    startController("@1 0.2 [1;2],[2;3],[3;X],\\r\\n\n"
                    "@2 0.2 [1;2],[2;1],\\r\\n\n"
                    "@3 0.2 [1;4],[2;3],\\r\\n\n");
    ASSERT_EQ(vote("1.5 key Space\n3 key Space\n4.5 key Space\n6.5 key Space\n"), 0);
    const QStringList sent = commands();
    EXPECT_EQ(sent.count("StartVote"), 3);
    qsizetype from = 0;
    for (int opening = 1; opening <= 3; ++opening)
        for (const char* c : {"options=4", "StartFrom=1", "QUILMARKdisplay=0", "StartVote"}) {
            const qsizetype at = sent.indexOf(QString::fromLatin1(c), from);
            ASSERT_GE(at, 0) << c << " of opening " << opening << " in " << sent.join(" / ").toStdString();
            from = at + 1;
        }
    for (const QString& c : sent) {
        EXPECT_FALSE(c.startsWith("VoteType=") && c != "VoteType=9") << c.toStdString();
        EXPECT_FALSE(c.startsWith("Limits=", Qt::CaseInsensitive)) << c.toStdString();
    }
    const QStringList lines = voteLines();
    ASSERT_EQ(lines.size(), 3);
    EXPECT_EQ(tokens(lines[0]).mid(0, 3), QStringList({"2", "3", "X"}));
    EXPECT_EQ(tokens(lines[1]).mid(0, 2), QStringList({"-", "1"}));   // keypad 1 chose 2 again
    EXPECT_EQ(tokens(lines[2]).mid(0, 2), QStringList({"4", "-"}));   // keypad 2 chose 3 first
}

struct ViewCase {
    int graphType;
    int displayBy;
};

class SeriesViews : public SeriesProgram, public ::testing::WithParamInterface<ViewCase> {};

TEST_P(SeriesViews, TheChosenViewLandsOnTheSlideAndTheOthersBesideItHidden)
{
    const ViewCase vc = GetParam();
    keyboardRoom();
    question(2, seriesQuestion(3, vc.graphType, vc.displayBy));
    const QRectF area = rectOf(shapeNamed(shapes(), "tallix chart sample"));
    ASSERT_FALSE(area.isEmpty());
    startController();
    ASSERT_EQ(vote("1 key g\n2 key g\n3 key g\n5 key Space\n"), 0);

    const QJsonArray list = shapes();
    for (int element : {0, 1}) {
        const QJsonObject pic = shapeNamed(list, QStringLiteral("tallix chart %1").arg(element));
        ASSERT_EQ(pic.value("kind").toString(), "picture") << element;
        EXPECT_EQ(pic.value("visible").toBool(), vc.displayBy == element) << element;
        const QRectF r = rectOf(pic);
        EXPECT_NEAR(r.left(), area.left(), 1.5);
        EXPECT_NEAR(r.top(), area.top(), 1.5);
        EXPECT_NEAR(r.width(), area.width(), 1.5);
        EXPECT_NEAR(r.height(), area.height(), 1.5);
    }
    const QJsonObject group = shapeNamed(list, "tallix chart 2");
    ASSERT_EQ(group.value("kind").toString(), "group");
    EXPECT_EQ(group.value("visible").toBool(), vc.displayBy == 2);
    const QJsonArray members = group.value("members").toArray();
    ASSERT_EQ(members.size(), 3);
    const bool stacked = vc.graphType == 4;
    for (int n = 1; n <= 3; ++n) {
        const QJsonObject pic = shapeNamed(members, QStringLiteral("tallix iteration %1").arg(n));
        ASSERT_FALSE(pic.isEmpty()) << n;
        EXPECT_EQ(pic.value("visible").toBool(), vc.displayBy == 2) << n;
        const QRectF r = rectOf(pic);
        // Inside the chart area: side by side at full height, or stacked at full width.
        EXPECT_TRUE(area.adjusted(-1.5, -1.5, 1.5, 1.5).contains(r)) << n;
        EXPECT_NEAR(stacked ? r.width() : r.height(), stacked ? area.width() : area.height(), 1.5) << n;
        EXPECT_NEAR(stacked ? r.top() : r.left(),
                    (stacked ? area.top() : area.left()) + (n - 1) * (stacked ? area.height() : area.width()) / 3, 1.5)
            << n;
    }
    const QJsonObject slideTags = tags(2);
    EXPECT_EQ(slideTags.value("SEQUENCEVOTE").toString(), "2");
    EXPECT_EQ(slideTags.value("TLXLIVEDATAISVISIBLE").toString(), "This slide has live data visible");
}

INSTANTIATE_TEST_SUITE_P(Views, SeriesViews,
                         ::testing::Values(ViewCase{2, 0}, ViewCase{2, 1}, ViewCase{2, 2}, ViewCase{4, 0},
                                           ViewCase{4, 1}, ViewCase{4, 2}));

TEST_F(SeriesProgram, EscRedrawsTheSavedSelectionsAndWaitsForThePresenter)
{
    keyboardRoom();
    question(2, seriesQuestion(3, 2, 2));
    const QString saved = "01 Nov 2026,10:00:00,1;2;3;,1of3\r\n01 Nov 2026,10:00:00,2;2;-;,2of3\r\n"
                          "01 Nov 2026,10:00:00,4;X;1;,3of3\r\n";
    ASSERT_EQ(run("tallix-deck", {"tags", deck(), "2", "--set", "TLXVOTES=" + saved}), 0);
    startController();
    // Ctrl+Q on the result runs the add-in's macro: only a window still up can take it.
    ASSERT_EQ(vote("1.5 key Escape\n4 key Ctrl+Q\n"), 0);
    EXPECT_EQ(savedVotes(), saved);
    const QJsonObject group = shapeNamed(shapes(), "tallix chart 2");
    EXPECT_EQ(group.value("members").toArray().size(), 3);
    EXPECT_TRUE(group.value("visible").toBool());
    EXPECT_TRUE(voteEnd().startsWith("InstaQ"));
}

TEST_F(SeriesProgram, OneSelectionIsStillASeries)
{
    keyboardRoom();
    question(2, seriesQuestion(1, 2, 2));
    startController();
    ASSERT_EQ(vote("1 key g\n3 key Space\n"), 0);
    const QStringList lines = voteLines();
    ASSERT_EQ(lines.size(), 1);
    EXPECT_EQ(lines[0].section(',', 3), "1of1");
    const QJsonObject group = shapeNamed(shapes(), "tallix chart 2");
    ASSERT_EQ(group.value("kind").toString(), "group");
    EXPECT_EQ(group.value("members").toArray().size(), 1);
}

TEST_F(SeriesProgram, ACountedDownSeriesEndsEachSelectionByTime)
{
    question(2, seriesQuestion(2, 2, 0, "<SeriesVType>1</SeriesVType><TimeLeft>1</TimeLeft>"));
    startController("@1 0.2 [1;4],\\r\\n\n@2 0.2 [1;3],\\r\\n\n");
    // Nobody ends a selection: each ends when its second is up.
    ASSERT_EQ(vote("6 key Space\n"), 0);
    const QStringList lines = voteLines();
    ASSERT_EQ(lines.size(), 2);
    EXPECT_EQ(tokens(lines[0]).value(0), "4");
    EXPECT_EQ(tokens(lines[1]).value(0), "3");
}

TEST_F(SeriesProgram, ATextSeriesOnTheKeyboardSavesItsLinesAndEnds)
{
    keyboardRoom();
    question(2, seriesQuestion(2, 8));
    startController();
    // A text series has no chart: it ends by itself once the last selection is saved.
    ASSERT_EQ(vote("1 key 2\n2 key Space\n3 key 3\n4 key Space\n"), 0);
    const QStringList lines = voteLines();
    ASSERT_EQ(lines.size(), 2);
    EXPECT_EQ(tokens(lines[0]).value(0), "2");
    EXPECT_EQ(lines[1].section(',', 3), "2of2");
    EXPECT_EQ(tokens(lines[1]).value(0), "3");
    EXPECT_TRUE(voteEnd().startsWith("Vote finished"));
}

TEST_F(SeriesProgram, ASeriesWithoutSelectionsSaysSoAndLeavesTheDeckAsItWas)
{
    keyboardRoom();
    startController();
    const QString cases[] = {"", "<Iterations>0</Iterations>", "<Iterations>3</Iterations><DisplayBy>Err</DisplayBy>"};
    for (const QString& series : cases) {
        const QByteArray settings =
            "<tlxfile><vote_info><vType>2</vType><options>4</options><startFrom>1</startFrom></vote_info>"
            "<graph_info><GraphType>2</GraphType></graph_info><series_vote>" +
            series.toUtf8() + "</series_vote></tlxfile>";
        question(2, settings);
        ASSERT_EQ(vote("1 key Enter\n2 key g\n3 key Space\n"), 0) << series.toStdString();
        EXPECT_TRUE(savedVotes().isEmpty()) << series.toStdString();
        EXPECT_TRUE(shapeNamed(shapes(), "tallix chart 2").isEmpty()) << series.toStdString();
        EXPECT_TRUE(voteEnd().startsWith("Vote finished")) << series.toStdString();
    }
}

} // namespace
