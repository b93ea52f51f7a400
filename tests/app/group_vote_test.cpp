// The group action end to end: a question's stored result shown again for the keypads that
// gave an answer on the default group slide, from the deck alone.

#include "vote_program_fixture.h"
#include "support/qt_print.h"

#include <gtest/gtest.h>

namespace {

const QByteArray kQuestion =
    "<tlxfile><vote_info><vType>0</vType><options>4</options><startFrom>1</startFrom></vote_info>"
    "<graph_info><GraphType>2</GraphType><GraphPlotting>0</GraphPlotting><ShowGraphs>True</ShowGraphs>"
    "</graph_info></tlxfile>";
const QString kGroupVotes = "01 Nov 2026,10:00:00,1;2;1;-;\r\n";
const QString kQuestionVotes = "01 Nov 2026,10:05:00,4;3;2;1;\r\n";

class GroupProgram : public tallix::testing::VoteProgramTest {
protected:
    void SetUp() override
    {
        VoteProgramTest::SetUp();
        question(2, kQuestion, "Staff|Student");
        question(3, kQuestion);
        ASSERT_EQ(run("tallix-deck", {"tags", deck(), "2", "--set", "TLXVOTES=" + kGroupVotes}), 0);
        ASSERT_EQ(run("tallix-deck", {"tags", deck(), "3", "--set", "TLXVOTES=" + kQuestionVotes}), 0);
        ASSERT_EQ(run("tallix-deck", {"default-group", deck(), "2"}), 0);
        startController();
    }
    void expectNothingSaved()
    {
        EXPECT_EQ(tags(2).value("TLXVOTES").toString(), kGroupVotes);
        EXPECT_EQ(tags(3).value("TLXVOTES").toString(), kQuestionVotes);
        EXPECT_FALSE(commands().contains("StartVote"));
    }
};

TEST_F(GroupProgram, AGroupShowsTheStoredResultAndWaitsForThePresenter)
{
    // Ctrl+Q on the result runs the add-in's macro: only a window still up can take it.
    ASSERT_EQ(vote("TLXGROUP,3,1", "3 key Ctrl+Q\n"), 0);
    const QJsonObject chart = shapeNamed(shapes(3), "tallix chart");
    ASSERT_EQ(chart.value("kind").toString(), "picture");
    EXPECT_TRUE(chart.value("visible").toBool());
    EXPECT_TRUE(voteEnd().startsWith("InstaQ"));
    expectNothingSaved();
}

TEST_F(GroupProgram, MakingChartsDrawsForEveryKeypadWithoutTheController)
{
    ASSERT_EQ(vote("TLXGROUP,3,999", "3 key Space\n", {"--no-show"}), 0);
    EXPECT_EQ(shapeNamed(shapes(3), "tallix chart").value("kind").toString(), "picture");
    EXPECT_TRUE(commands().isEmpty()) << commands().join(" / ").toStdString();
    expectNothingSaved();
}

} // namespace
