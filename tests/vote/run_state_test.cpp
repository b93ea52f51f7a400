#include "support/test_context.h"

#include <gtest/gtest.h>

using namespace tallix;
using tallix::testing::TestRun;

namespace {

TEST(RunState, StartsZeroEmptyAndFalseButForItsStartValues)
{
    TestRun run;
    const RunContext& c = run.ctx;
    EXPECT_EQ(c.keypadUniverse, 0);
    EXPECT_EQ(c.firstKeypad, 1);
    EXPECT_EQ(c.notVotedShowCount, 20);
    EXPECT_FALSE(c.voteReceived);
    EXPECT_TRUE(c.BaseType.isEmpty());
}

TEST(ResetVoteArrays, FillsAllButTheLastElementAndClearsTheExpiry)
{
    TestRun run;
    RunContext& c = run.ctx;
    c.keypadUniverse = 3;
    c.countDownExpired = 2;
    ResetVoteArrays(c);
    ASSERT_EQ(c.votes.ubound(), 3);
    EXPECT_EQ(c.votes(0), "-1");
    EXPECT_EQ(c.votes(2), "-1");
    EXPECT_EQ(c.votes(3), "");           // keypad 4's element exists but is not filled
    EXPECT_EQ(c.voteTimes(3), 0.0f);
    EXPECT_EQ(c.votesBackup(1), "-1");
    EXPECT_EQ(c.countDownExpired, 0);
}

TEST(AllocArrays, GrowsKeepingVotesAndMakesSeriesOnlyForSeriesVotes)
{
    TestRun run;
    RunContext& c = run.ctx;
    c.keypadUniverse = 2;
    ResetVoteArrays(c);
    c.votes(1) = "3";
    c.keypadUniverse = 5;
    AllocArrays(c);
    EXPECT_EQ(c.votes.ubound(), 5);
    EXPECT_EQ(c.votes(1), "3");
    EXPECT_EQ(c.keypadWork3.ubound(), 5);
    EXPECT_EQ(c.seriesVotes.ubound1(), -1);
    c.vType = 2;
    c.Iterations = 3;
    AllocArrays(c);
    EXPECT_EQ(c.seriesVotes.ubound1(), 3);
    EXPECT_EQ(c.seriesVotes.ubound2(), 5);
}

TEST(VbArray, OutOfBoundsRaisesSubscriptOutOfRange)
{
    VbArray<int> a(2);
    EXPECT_EQ(a.size(), 3);
    try {
        a(3) = 1;
        FAIL();
    } catch (const VbError& e) {
        EXPECT_EQ(e.number(), ErrNo::SubscriptOutOfRange);
    }
    EXPECT_THROW(a(-1), VbError);
    VbArray2<float> b;
    b.redim(1, 2, -1);
    b(1, 2) = 7;
    b.redimPreserve(2, 3, -1);
    EXPECT_EQ(b(1, 2), 7);
    EXPECT_EQ(b(2, 3), -1);
    EXPECT_THROW(b(3, 0), VbError);
}

} // namespace
