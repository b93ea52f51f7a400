// A reshow end to end: a comparison slide built with tallix-deck draws stored results
// again, each chart under its filter, from the deck alone.

#include "vote_program_fixture.h"
#include "support/qt_print.h"

#include <QProcess>
#include <QRectF>
#include <QRegularExpression>

#include <gtest/gtest.h>

namespace {

const QByteArray kQuestion =
    "<tlxfile><vote_info><vType>0</vType><options>4</options><startFrom>1</startFrom></vote_info>"
    "<graph_info><GraphType>2</GraphType><GraphPlotting>0</GraphPlotting><ShowGraphs>True</ShowGraphs>"
    "</graph_info></tlxfile>";
const QString kWho = "01 Nov 2026,10:00:00,1;2;1;2;1;2;\r\n";
const QString kHow = "01 Nov 2026,10:05:00,1;2;1;2;3;2;\r\n";

class ReshowProgram : public tallix::testing::VoteProgramTest {
protected:
    ReshowProgram() : VoteProgramTest(4) {}
    void SetUp() override
    {
        VoteProgramTest::SetUp();
        ASSERT_EQ(run("tallix-deck", {"question", deck(), "2", "--settings", write("q2.xml", kQuestion), "--answers",
                                      "Staff|Student", "--groups", "Staff|Student", "--title", "Who are you?"}),
                  0);
        ASSERT_EQ(run("tallix-deck", {"question", deck(), "3", "--settings", write("q3.xml", kQuestion), "--answers",
                                      "Bus|Bike|Car|Walk", "--title", "How do you come in?"}),
                  0);
        ASSERT_EQ(run("tallix-deck", {"tags", deck(), "2", "--set", "TLXVOTES=" + kWho}), 0);
        ASSERT_EQ(run("tallix-deck", {"tags", deck(), "3", "--set", "TLXVOTES=" + kHow}), 0);
        startController();
    }
    int reshow(const QStringList& charts)
    {
        return run("tallix-deck", QStringList{"reshow", deck(), "4"} << charts);
    }
    static QRectF rectOf(const QJsonObject& s)
    {
        return {s.value("left").toDouble(), s.value("top").toDouble(), s.value("width").toDouble(),
                s.value("height").toDouble()};
    }
    // The picture behind a shape of the reshow slide, as the deck holds it.
    QByteArray pictureOf(const QString& shapeName)
    {
        auto unzip = [&](const QString& part) {
            QProcess p;
            p.start("unzip", {"-p", deck(), part});
            p.waitForFinished(10000);
            return QString::fromUtf8(p.readAllStandardOutput());
        };
        const QString slide = unzip("ppt/slides/slide4.xml");
        const qsizetype at = slide.indexOf("name=\"" + shapeName + "\"");
        const QString rid = QRegularExpression("r:embed=\"([^\"]+)\"").match(slide, at).captured(1);
        const QString rels = unzip("ppt/slides/_rels/slide4.xml.rels");
        const QString target =
            QRegularExpression("Id=\"" + rid + "\"[^>]*Target=\"../([^\"]+)\"").match(rels).captured(1);
        QProcess p;
        p.start("unzip", {"-p", deck(), "ppt/" + target});
        p.waitForFinished(10000);
        return p.readAllStandardOutput();
    }
    static bool holdsText(const QByteArray& picture, const QString& text)
    {
        // The metafile keeps its text as UTF-16.
        return picture.contains(QByteArray(reinterpret_cast<const char*>(text.utf16()), text.size() * 2));
    }
    void expectNothingElseChanged()
    {
        EXPECT_EQ(tags(2).value("TLXVOTES").toString(), kWho);
        EXPECT_EQ(tags(3).value("TLXVOTES").toString(), kHow);
        EXPECT_FALSE(tags(4).contains("TLXVOTES"));
        for (int s : {2, 3})
            for (const QJsonValue& v : shapes(s))
                EXPECT_NE(v.toObject().value("kind").toString(), "picture") << "slide " << s;
        EXPECT_TRUE(commands().isEmpty()) << commands().join(" / ").toStdString();
    }
};

TEST_F(ReshowProgram, EachChartLandsInItsAreaUnderItsFilter)
{
    ASSERT_EQ(reshow({"--chart", "3", "--where", "2=Staff", "--area", "40,130,400,300", "--chart", "3", "--where",
                      "2=Student", "--area", "500,130,400,300", "--labels"}),
              0);
    ASSERT_EQ(vote("TLXRESHOW,4", ""), 0);   // it ends by itself
    const QJsonArray list = shapes(4);
    const QRectF areas[] = {{40, 130, 400, 300}, {500, 130, 400, 300}};
    for (int n = 1; n <= 2; ++n) {
        const QJsonObject chart = shapeNamed(list, QStringLiteral("reshow %1 tallix chart").arg(n));
        ASSERT_EQ(chart.value("kind").toString(), "picture") << n;
        EXPECT_TRUE(chart.value("visible").toBool()) << n;
        const QRectF r = rectOf(chart);
        for (auto [got, want] : {std::pair{r.left(), areas[n - 1].left()}, std::pair{r.top(), areas[n - 1].top()},
                                 std::pair{r.width(), areas[n - 1].width()},
                                 std::pair{r.height(), areas[n - 1].height()}})
            EXPECT_NEAR(got, want, 1.0) << n;
    }
    EXPECT_TRUE(shapeNamed(list, "tallix chart").isEmpty());
    // Each titled with its question and its filter's answer.
    EXPECT_TRUE(holdsText(pictureOf("reshow 1 tallix chart"), "How do you come in?: Staff"));
    EXPECT_TRUE(holdsText(pictureOf("reshow 2 tallix chart"), "How do you come in?: Student"));
    const QStringList slideList = tags().value("TLX_SLIDEINFO").toString().split("\r\n");
    EXPECT_EQ(slideList.size(), 3);   // the two questions and the time it was made
    EXPECT_TRUE(voteEnd().startsWith("End of Reshow"));
    expectNothingElseChanged();

    // A second showing replaces the first.
    ASSERT_EQ(vote("TLXRESHOW,4", ""), 0);
    int charts = 0;
    for (const QJsonValue& v : shapes(4))
        charts += v.toObject().value("name").toString().startsWith("reshow ");
    EXPECT_EQ(charts, 2);
}

TEST_F(ReshowProgram, AChartWhoseQuestionIsGoneIsSkippedWithoutAWord)
{
    ASSERT_EQ(reshow({"--chart", "3", "--area", "40,130,400,300", "--chart", "2", "--area", "500,130,400,300"}), 0);
    // The second chart's question stops being one after the reshow was made.
    ASSERT_EQ(run("tallix-deck", {"tags", deck(), "2", "--delete", "tlxVote"}), 0);
    ASSERT_EQ(vote("TLXRESHOW,4", ""), 0);
    EXPECT_FALSE(shapeNamed(shapes(4), "reshow 1 tallix chart").isEmpty());
    EXPECT_TRUE(shapeNamed(shapes(4), "reshow 2 tallix chart").isEmpty());
}

TEST_F(ReshowProgram, AnUnreadableDocumentSaysSoAndDrawsNothing)
{
    ASSERT_EQ(run("tallix-deck", {"tags", deck(), "4", "--set", "TLXRESHOW=<tlxfile><reshow_info>"}), 0);
    ASSERT_EQ(vote("TLXRESHOW,4", "1.5 key Enter\n"), 0);
    for (const QJsonValue& v : shapes(4))
        EXPECT_NE(v.toObject().value("kind").toString(), "picture");
    expectNothingElseChanged();
}

} // namespace
