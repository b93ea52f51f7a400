// Rating and text votes end to end: a tallix-deck deck with rank markers or object tables,
// the keyboard base or the controller stand-in, an operator script, the real tallix-vote,
// and the deck written back.

#include "vote_program_fixture.h"
#include "support/qt_print.h"

#include <QProcess>
#include <QRectF>
#include <QRegularExpression>

#include <gtest/gtest.h>

namespace {

QByteArray ratingQuestion(int vType, int items, const QString& more = {})
{
    return QStringLiteral("<tlxfile><vote_info><vType>%1</vType><options>5</options><startFrom>1</startFrom>"
                          "<TimeLeft>1</TimeLeft></vote_info><graph_info><GraphType>7</GraphType>"
                          "<GraphPlotting>0</GraphPlotting><ShowGraphs>True</ShowGraphs></graph_info>"
                          "<rank_vote><NumberRankVotes>%2</NumberRankVotes><MarkerCharacter>232</MarkerCharacter>"
                          "<MarkerColour>255</MarkerColour>%3</rank_vote></tlxfile>")
        .arg(vType)
        .arg(items)
        .arg(more)
        .toUtf8();
}

QByteArray objectQuestion(int vType)
{
    return QStringLiteral("<tlxfile><vote_info><vType>%1</vType><options>3</options><startFrom>1</startFrom>"
                          "<TimeLeft>1</TimeLeft><showAsPercentOrNumber>2</showAsPercentOrNumber>"
                          "<PercentDP>1</PercentDP></vote_info><graph_info><GraphType>6</GraphType>"
                          "<ShowGraphs>True</ShowGraphs></graph_info></tlxfile>")
        .arg(vType)
        .toUtf8();
}

class RatingAndTextProgram : public tallix::testing::VoteProgramTest {
protected:
    void question(const QByteArray& settings, const QStringList& more)
    {
        ASSERT_EQ(run("tallix-deck", QStringList{"question", deck(), "2", "--settings", write("q.xml", settings),
                                                 "--answers", "Coffee|Tea|Water", "--title", "Rate them"}
                                         << more),
                  0);
    }
    int vote(const QByteArray& operatorScript) { return VoteProgramTest::vote("TLXVOTE,2", operatorScript); }
    static QRectF rectOf(const QJsonObject& s)
    {
        return {s.value("left").toDouble(), s.value("top").toDouble(), s.value("width").toDouble(),
                s.value("height").toDouble()};
    }
    // The question slide's XML as written in the deck.
    QString slideXml()
    {
        QProcess unzip;
        unzip.start("unzip", {"-p", deck(), "ppt/slides/slide2.xml"});
        unzip.waitForFinished(10000);
        return QString::fromUtf8(unzip.readAllStandardOutput());
    }
    QStringList mediaParts()
    {
        QProcess unzip;
        unzip.start("unzip", {"-Z1", deck()});
        unzip.waitForFinished(10000);
        return QString::fromUtf8(unzip.readAllStandardOutput()).split('\n').filter("ppt/media/");
    }
};

TEST_F(RatingAndTextProgram, ARatingVoteRatesItsItemsInTurnAndPlacesTheirBarsAsOneGroup)
{
    // Item 1 has a saved place: the left half of the window, a tenth of its height.
    question(ratingQuestion(0, 3,
                            "<RankPositionX001>0.5</RankPositionX001><RankPositionY001>0.1</RankPositionY001>"
                            "<RankPositionW001>0.5</RankPositionW001><RankPositionL001>0.2</RankPositionL001>"),
             {"--rank-markers", "3"});
    const QString earlier = "01 Nov 2026,10:00:00,4;4;,1of3\r\n";
    ASSERT_EQ(run("tallix-deck", {"tags", deck(), "2", "--set", "TLXVOTES=" + earlier}), 0);
    const QRectF area = rectOf(shapeNamed(shapes(2), "tallix chart sample"));
    startController("@1 0.2 [1;4],[2;5],\\r\\n\n@2 0.2 [1;2],\\r\\n\n@3 0.2 [1;3],[2;3],[3;3],\\r\\n\n");
    ASSERT_EQ(vote("1.5 key Space\n3 key Space\n4.5 key Space\n6.5 key Space\n"), 0);

    EXPECT_EQ(commands().count("StartVote"), 3);
    const QStringList lines = voteLines(2);
    ASSERT_EQ(lines.size(), 4);
    EXPECT_EQ(lines[0] + "\r\n", earlier);
    const char* const marks[] = {"4;5;-", "2;-;-", "3;3;3"};
    for (int i = 1; i <= 3; ++i) {
        EXPECT_TRUE(lines[i].section(',', 2, 2).startsWith(marks[i - 1])) << lines[i].toStdString();
        EXPECT_EQ(lines[i].section(',', 3), QStringLiteral("%1of3").arg(i));
    }
    EXPECT_EQ(tags(2).value("RANKVOTE").toString(), "2");
    EXPECT_TRUE(voteEnd().startsWith("Vote finished"));

    const QJsonArray list = shapes(2);
    const QJsonObject group = shapeNamed(list, "tallix chart ratings");
    ASSERT_EQ(group.value("kind").toString(), "group");
    EXPECT_TRUE(group.value("visible").toBool());
    const QJsonArray bars = group.value("members").toArray();
    ASSERT_EQ(bars.size(), 3);
    for (int n = 2; n <= 4; ++n) {
        const QJsonObject bar = shapeNamed(bars, QStringLiteral("tallix ratings %1").arg(n));
        EXPECT_EQ(bar.value("kind").toString(), "picture") << n;
        EXPECT_TRUE(area.adjusted(-1.5, -1.5, 1.5, 1.5).contains(rectOf(bar))) << n;
    }
    const QRectF first = rectOf(shapeNamed(bars, "tallix ratings 2"));
    EXPECT_NEAR(first.left(), area.left() + 0.5 * area.width(), 1.5);
    EXPECT_NEAR(first.top(), area.top() + 0.1 * area.height(), 1.5);
    EXPECT_NEAR(first.width(), 0.5 * area.width(), 1.5);
    EXPECT_NEAR(first.height(), 0.2 * area.height(), 1.5);
    for (const QJsonValue& v : list)
        EXPECT_FALSE(v.toObject().value("name").toString().contains("tallix ratings")) << "left over";
    for (const char* letter : {"A", "B", "C"}) {
        const QJsonObject alone = shapeNamed(list, QStringLiteral("tallix chart ") + letter);
        EXPECT_EQ(alone.value("kind").toString(), "picture") << letter;
        EXPECT_FALSE(alone.value("visible").toBool()) << letter;
    }
    EXPECT_FALSE(mediaParts().filter(".emf").isEmpty());

    // Each marker stood while its item was open, and is hidden now, holding its glyph.
    const QString xml = slideXml();
    for (int n = 1; n <= 3; ++n) {
        const QString name = QStringLiteral("tallix rank marker 0%1").arg(n);
        const QJsonObject m = shapeNamed(list, name);
        EXPECT_FALSE(m.value("visible").toBool()) << n;
        EXPECT_EQ(m.value("text").toString(), QString(QChar(232))) << n;
        // Its run in the glyph font, 26 points, the question's marker colour (red).
        const qsizetype at = xml.indexOf("name=\"" + name + "\"");
        ASSERT_GE(at, 0) << n;
        const QString shape = xml.mid(at, xml.indexOf("</p:sp>", at) - at);
        EXPECT_TRUE(shape.contains("<a:latin typeface=\"Wingdings\"")) << n;
        EXPECT_TRUE(shape.contains("<a:sym typeface=\"Wingdings\"")) << n;
        EXPECT_TRUE(shape.contains("sz=\"2600\"")) << n;
        EXPECT_TRUE(shape.contains("<a:srgbClr val=\"FF0000\"/>")) << n;
    }
}

TEST_F(RatingAndTextProgram, CountedDownItemsEndByTimeOnASlideWithoutMarkers)
{
    question(ratingQuestion(1, 2), {});
    startController("@1 0.2 [1;4],\\r\\n\n@2 0.2 [1;1],[2;2],\\r\\n\n");
    // Nobody ends an item: each closes when its second is up; the last key leaves the result.
    ASSERT_EQ(vote("6 key Space\n"), 0);
    EXPECT_EQ(commands().count("StartVote"), 2);
    const QStringList lines = voteLines(2);
    ASSERT_EQ(lines.size(), 2);
    EXPECT_TRUE(lines[0].section(',', 2, 2).startsWith("4;-"));
    EXPECT_TRUE(lines[1].section(',', 2, 2).startsWith("1;2;-"));
    EXPECT_EQ(shapeNamed(shapes(2), "tallix chart ratings").value("members").toArray().size(), 2);
}

TEST_F(RatingAndTextProgram, ARatingVoteWithoutItemsDoesNotRun)
{
    question(ratingQuestion(0, 0), {});
    startController();
    ASSERT_EQ(vote("1 key Enter\n"), 0);
    EXPECT_TRUE(voteLines(2).isEmpty());
    EXPECT_TRUE(shapeNamed(shapes(2), "tallix chart ratings").isEmpty());
    EXPECT_TRUE(voteEnd().startsWith("Vote finished"));
}

struct ObjectCase {
    int vType;
    const char* script;      // the controller's, by opening
    const char* operatorKeys;
};

class ObjectVote : public RatingAndTextProgram, public ::testing::WithParamInterface<ObjectCase> {};

TEST_P(ObjectVote, EachOptionsResultStandsInItsOwnTableAndTheRunEndsByItself)
{
    question(objectQuestion(GetParam().vType), {"--objects"});
    const QJsonObject answersBefore = shapeNamed(shapes(2), "tlx_answers");
    startController(GetParam().script);
    ASSERT_EQ(vote(GetParam().operatorKeys), 0);
    const QJsonArray list = shapes(2);
    const char* const cells[] = {"(2) 66.7%", "(0) 0.0%", "(1) 33.3%"};
    const char* const answers[] = {"Coffee", "Tea", "Water"};
    for (int n = 1; n <= 3; ++n) {
        const QJsonObject table = shapeNamed(list, QStringLiteral("tlx_object%1").arg(n));
        EXPECT_TRUE(table.value("visible").toBool()) << n;
        const QJsonArray row = table.value("cells").toArray().at(0).toArray();
        ASSERT_EQ(row.size(), 2) << n;
        EXPECT_EQ(row.at(0).toString(), answers[n - 1]);
        EXPECT_EQ(row.at(1).toString(), cells[n - 1]) << n;
    }
    EXPECT_EQ(shapeNamed(list, "tlx_answers"), answersBefore);
    for (const QJsonValue& v : list)
        EXPECT_NE(v.toObject().value("kind").toString(), "picture");
    const QString settings = tags(2).value("TLXVOTE").toString();
    for (int n = 1; n <= 3; ++n)
        EXPECT_TRUE(settings.contains(QRegularExpression(QStringLiteral("<tlx_object%1>.*<Top>[0-9.]+</Top>").arg(n))))
            << n;
    EXPECT_TRUE(voteEnd().startsWith("Vote finished"));
    EXPECT_EQ(voteLines(2).size(), 1);
}

INSTANTIATE_TEST_SUITE_P(
    CountedUpAndDown, ObjectVote,
    ::testing::Values(ObjectCase{0, "0.2 [1;1],[2;3],[3;1],\\r\\n\n", "1.5 key Space\n"},
                      ObjectCase{1, "0.2 [1;1],[2;3],[3;1],\\r\\n\n", ""}));

TEST_F(RatingAndTextProgram, APerTextVoteOpensItsQuestionsInTurn)
{
    question("<tlxfile><vote_info><vType>3</vType><options>3</options><startFrom>1</startFrom></vote_info>"
             "<graph_info><GraphType>6</GraphType></graph_info>"
             "<text_vote><NumberTextVotes>2</NumberTextVotes></text_vote></tlxfile>",
             {"--objects"});
    startController();
    ASSERT_EQ(vote(""), 0);
    EXPECT_EQ(commands().count("StartVote"), 2);
    EXPECT_TRUE(voteEnd().startsWith("Vote finished"));
}

} // namespace
