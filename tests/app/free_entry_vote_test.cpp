// Free-entry votes end to end: typed numbers and text through the controller stand-in or
// the keyboard, the real tallix-vote, and the deck written back.

#include "vote_program_fixture.h"
#include "support/qt_print.h"

#include <gtest/gtest.h>

namespace {

QByteArray freeQuestion(const QString& voteInfo, int graphType = 2)
{
    return QStringLiteral("<tlxfile><vote_info><vType>0</vType><options>4</options><startFrom>1</startFrom>"
                          "<FixedFree>1</FixedFree>%1</vote_info><graph_info><GraphType>%2</GraphType>"
                          "<GraphPlotting>0</GraphPlotting><ShowGraphs>True</ShowGraphs></graph_info></tlxfile>")
        .arg(voteInfo)
        .arg(graphType)
        .toUtf8();
}

const QByteArray kNumbers = freeQuestion("<FractionalJoltTEXT>0</FractionalJoltTEXT><FreeNumDisplay_Type>1"
                                         "</FreeNumDisplay_Type><FreeNumDisplay_ShowKP>True</FreeNumDisplay_ShowKP>"
                                         "<NumberDecimalPlaces>1</NumberDecimalPlaces>");
const QByteArray kLiveText = freeQuestion("<FractionalJoltTEXT>1</FractionalJoltTEXT><Joltdisplay>0</Joltdisplay>"
                                          "<WLSShow>True</WLSShow><WLSDisplay>3</WLSDisplay>");

class FreeEntryProgram : public tallix::testing::VoteProgramTest {
protected:
    void grandHubRoom()
    {
        write("appdata/tallix/tlxctrl.ini", "[Controller]\nMaxKeypads=20\n[Base0]\nType=GrandHub\nLow=1\nHigh=20\n");
    }
    void question(const QByteArray& settings, const QStringList& more, const QString& answers = "Answer")
    {
        ASSERT_EQ(run("tallix-deck", QStringList{"question", deck(), "2", "--settings", write("q.xml", settings),
                                                 "--answers", answers, "--title", "Tell us"}
                                         << more),
                  0);
    }
    int vote(const QByteArray& operatorScript) { return VoteProgramTest::vote("TLXVOTE,2", operatorScript); }
    QStringList savedTokens()
    {
        const QStringList lines = voteLines(2);
        return lines.isEmpty() ? QStringList() : tokens(lines.last());
    }
};

TEST_F(FreeEntryProgram, TypedNumbersAreSavedAndShownInOrderWithTheirParticipants)
{
    grandHubRoom();
    question(kNumbers, {"--numbers-table", "2"});
    startController("0.2 [1;12.5],[2;abc],[3;7],[4;3.25],[5;12x],\\r\\n\n");
    ASSERT_EQ(vote("1.5 key Space\n"), 0);
    EXPECT_EQ(savedTokens().mid(0, 5), QStringList({"12.5", "-", "7", "3.25", "-"}));
    const QJsonObject table = shapeNamed(shapes(2), "tlx_answers");
    EXPECT_TRUE(table.value("visible").toBool());
    const QJsonArray rows = table.value("cells").toArray();
    ASSERT_EQ(rows.size(), 4);   // the header and one row a value; no template row is left
    const char* const expected[][2] = {{"3.3", "Keypad 4"}, {"7.0", "Keypad 3"}, {"12.5", "Keypad 1"}};
    for (int r = 0; r < 3; ++r) {
        EXPECT_EQ(rows.at(r + 1).toArray().at(0).toString(), expected[r][0]) << r;
        EXPECT_EQ(rows.at(r + 1).toArray().at(1).toString(), expected[r][1]) << r;
    }
    EXPECT_TRUE(voteEnd().startsWith("Vote finished"));
}

TEST_F(FreeEntryProgram, BannedAndMalformedAnswersAppearNowhere)
{
    grandHubRoom();
    write("appdata/tallix/textVoteBannedWordList.txt", "spam\r\n\xC3\xA4rger\r\n");
    question(kLiveText, {});
    const QByteArray overlong(1001, 'a');
    startController("0.2 [1;hello there],[2;SPAM again],[3;a;b],[4;],[5;\xC5\x81\xC3\xB3" "d\xC5\xBA],[6;\xC3\x84RGER],"
                    "[7;" + overlong + "],[8;tea],\\r\\n\n");
    ASSERT_EQ(vote("1.5 key Space\n"), 0);
    const QStringList saved = savedTokens();
    EXPECT_EQ(saved.mid(0, 8), QStringList({"hello there", "-", "-", "-", QString::fromUtf8("Łódź"), "-", "-", "tea"}));
    QString shown = shapeNamed(shapes(2), "tlx_answers").value("text").toString();
    shown.remove(u'\r').remove(u'\n');
    EXPECT_EQ(shown, QString::fromUtf8("teaŁódźhello there"));   // newest on top, three lines
    EXPECT_FALSE(shown.contains("SPAM", Qt::CaseInsensitive));
    EXPECT_TRUE(voteEnd().startsWith("Vote finished"));
}

TEST_F(FreeEntryProgram, AScrollingListKeepsEveryAnswerInTagChunks)
{
    grandHubRoom();
    question(freeQuestion("<FractionalJoltTEXT>1</FractionalJoltTEXT><Joltdisplay>0</Joltdisplay>"
                          "<WLSShow>True</WLSShow><WLSDisplay>2</WLSDisplay><WLSListManagementMode>2"
                          "</WLSListManagementMode><WLSSpeed>0.2</WLSSpeed><JoltMultiVote>True</JoltMultiVote>"),
             {"--answers-backup"}, "First|Second");
    startController("0.2 [1;red],[2;blue],\\r\\n\n0.4 [1;green],[3;gold],\\r\\n\n0.6 [2;pink],\\r\\n\n");
    ASSERT_EQ(vote("2 key Space\n"), 0);
    const QJsonObject slideTags = tags(2);
    // Chunks of the option count, four here: every answer kept, in the order it came.
    EXPECT_EQ(slideTags.value("TLX_ANSWERS").toString(), "red\r\nblue\r\ngreen\r\ngold");
    EXPECT_EQ(slideTags.value("1TLX_ANSWERS").toString(), "pink");
    EXPECT_EQ(slideTags.value("TLX_ANSWERS_COUNT").toString(), "1");
    EXPECT_FALSE(shapeNamed(shapes(2), "tlx_answers").isEmpty());   // made from the backup
}

TEST_F(FreeEntryProgram, TheKeyboardFillsATextVoteFromTheRandomAnswers)
{
    write("appdata/tallix/tlxctrl.ini", "[Controller]\nMaxKeypads=5\n[Base0]\nType=KBOARD\nLow=1\nHigh=5\n");
    write("appdata/tallix/rndTextVotes.txt", "\xEF\xBB\xBF" "alpha\r\nbeta\r\n\xC3\xA9t\xC3\xA9\r\n");
    question(kLiveText, {});
    startController();
    ASSERT_EQ(vote("1 key g\n"), 0);
    const QStringList saved = savedTokens();
    ASSERT_GE(saved.size(), 5);
    for (int k = 0; k < 5; ++k)
        EXPECT_TRUE(QStringList({"alpha", "beta", QString::fromUtf8("été")}).contains(saved[k])) << k;
}

TEST_F(FreeEntryProgram, AWordCloudLandsOnTheSlideOverItsArea)
{
    grandHubRoom();
    question(freeQuestion("<FractionalJoltTEXT>1</FractionalJoltTEXT><Joltdisplay>2</Joltdisplay>"),
             {"--word-cloud", "500,150,400,300"});
    startController("0.2 [1;tea],[2;Tea],[3;coffee],[4;TEA],[5;water],\\r\\n\n");
    ASSERT_EQ(vote("1.5 key Space\n4 key Space\n"), 0);
    const QJsonObject chart = shapeNamed(shapes(2), "tallix chart");
    ASSERT_EQ(chart.value("kind").toString(), "picture");
    EXPECT_TRUE(chart.value("visible").toBool());
    EXPECT_NEAR(chart.value("left").toDouble(), 500, 1.5);
    EXPECT_NEAR(chart.value("top").toDouble(), 150, 1.5);
    EXPECT_NEAR(chart.value("width").toDouble(), 400, 1.5);
    EXPECT_NEAR(chart.value("height").toDouble(), 300, 1.5);
}

TEST_F(FreeEntryProgram, ARangeThatDoesNotReadEndsTheRunWithoutAChart)
{
    grandHubRoom();
    question(freeQuestion("<FractionalJoltTEXT>0</FractionalJoltTEXT><FreeNumDisplay_Type>0</FreeNumDisplay_Type>"), {},
             "<10|lots");
    startController("0.2 [1;5],\\r\\n\n");
    // The operator closes "Invalid answer option: lots".
    ASSERT_EQ(vote("1.5 key Space\n2.5 key Enter\n"), 0);
    for (const QJsonValue& v : shapes(2))
        EXPECT_NE(v.toObject().value("kind").toString(), "picture");
    EXPECT_EQ(savedTokens().value(0), "5");
}

TEST_F(FreeEntryProgram, ANumberVoteWithNoValidValueEndsInOrder)
{
    grandHubRoom();
    question(kNumbers, {"--numbers-table", "2"});
    startController("0.2 [1;abc],[2;1.2.3],\\r\\n\n");
    // With nothing valid the first Space only arms the second.
    ASSERT_EQ(vote("1.5 key Space\n2.5 key Space\n"), 0);
    EXPECT_TRUE(voteLines(2).isEmpty());
    EXPECT_TRUE(voteEnd().startsWith("Vote finished"));
}

} // namespace
