#include "charts/collation.h"
#include "support/qt_print.h"
#include "support/test_context.h"

#include <gtest/gtest.h>

#include <vector>

using namespace tallix;
using tallix::testing::TestRun;

namespace {

std::vector<double> valuesOf(const VbArray<double>& a)
{
    return {a.begin(), a.end()};
}

std::vector<double> rowOf(const VbArray2<double>& a, int r)
{
    return {a.row(r), a.row(r) + a.ubound2() + 1};
}

class Collation : public ::testing::Test {
protected:
    TestRun run;
    RunContext& ctx = run.ctx;
    short filterSet = 0, sample = 0, keep = 0;

    void votes(const QStringList& v)
    {
        ctx.keypadUniverse = qint32(v.size());
        ctx.votes.redim(int(v.size()));   // the top element belongs to no keypad
        for (int i = 0; i < v.size(); ++i)
            ctx.votes(i) = v[i];
    }
    void weights(const std::vector<std::pair<qint32, double>>& byKeypad)
    {
        ctx.ParticipantWeighting = true;
        ctx.participants.redim(int(byKeypad.size()));
        for (int k = 1; k <= int(byKeypad.size()); ++k) {
            ctx.participants(k).number = byKeypad[k - 1].first;
            ctx.participants(k).weighting = byKeypad[k - 1].second;
        }
    }
    void collate() { CollateVotes(ctx, filterSet, sample, keep); }
};

struct VoteCase {
    const char* name;
    short startFrom;
    short options;
    bool abstain;
    QStringList votes;
    std::vector<double> counts;
    short voters;
    double abstains;
    bool reportsFailure;
};

class CollateVoteCases : public Collation, public ::testing::WithParamInterface<VoteCase> {};

TEST_P(CollateVoteCases, TotalsPerOption)
{
    const VoteCase& c = GetParam();
    ctx.startFrom = c.startFrom;
    ctx.optionCount = c.options;
    ctx.allowAbstain = c.abstain;
    votes(c.votes);
    collate();
    EXPECT_EQ(valuesOf(ctx.optionCounts), c.counts);
    EXPECT_EQ(ctx.votersCounted, c.voters);
    EXPECT_EQ(ctx.weightedVoteTotal, c.voters);
    EXPECT_EQ(ctx.abstainTotal, c.abstains);
    EXPECT_EQ(run.errLog().contains("CollateVotes"), c.reportsFailure) << qPrintable(run.errLog());
}

INSTANTIATE_TEST_SUITE_P(
    Votes, CollateVoteCases,
    ::testing::Values(
        VoteCase{"FromOneWithAbstains", 1, 4, true, {"1", "4", "5", "0", "X", "-2"}, {1, 0, 0, 1, 0}, 2, 3, false},
        VoteCase{"AbstainsNotAskedFor", 1, 4, false, {"2", "X", "-2"}, {0, 1, 0, 0, 0}, 1, 0, false},
        VoteCase{"NoVoteCountsNothing", 1, 3, true, {"-1", "", "-1"}, {0, 0, 0, 0}, 0, 0, false},
        VoteCase{"FractionLandsOnNearest", 1, 4, false, {"2.6", "1.5", "2.5"}, {1, 0, 2, 0, 0}, 3, 0, false},
        VoteCase{"TextAroundTheNumber", 1, 4, false, {" 3", "#2", "3%"}, {0, 1, 2, 0, 0}, 3, 0, false},
        VoteCase{"FromZeroZeroIsAnOption", 0, 3, true, {"0", "2", "0"}, {2, 0, 1, 0}, 3, 0, false},
        // The option count itself lands in the spare top element, yet is counted.
        VoteCase{"FromZeroTopIsCountedUndrawn", 0, 3, false, {"3", "1"}, {0, 1, 0, 1}, 2, 0, false},
        // "X" reads as 0 but is no integer: reported, the tally goes on, the voter counts.
        VoteCase{"FromZeroTextFails", 0, 3, true, {"X", "1"}, {0, 1, 0, 0}, 2, 0, true}),
    [](const auto& info) { return std::string(info.param.name); });

TEST_F(Collation, ParticipantWeightsNeedAPositiveNumber)
{
    ctx.startFrom = 1;
    ctx.optionCount = 2;
    votes({"1", "2", "2"});
    // Keypad 2's record is numbered 0: weight 1. Keypad 3 lies past the list's last
    // index and is not weighted either.
    weights({{1, 2.5}, {0, 4.0}});
    collate();
    EXPECT_EQ(valuesOf(ctx.optionCounts), (std::vector<double>{2.5, 2, 0}));
    EXPECT_EQ(ctx.votersCounted, 3);
    EXPECT_DOUBLE_EQ(ctx.weightedVoteTotal, 4.5);
}

TEST_F(Collation, FiltersDecideWhoCounts)
{
    ctx.startFrom = 1;
    ctx.optionCount = 2;
    votes({"1", "1", "2", "2"});

    ctx.groupFilter.redim(4, 0);
    ctx.groupFilter(0) = 1;
    ctx.groupFilter(2) = 1;
    filterSet = 1;
    collate();
    EXPECT_EQ(valuesOf(ctx.optionCounts), (std::vector<double>{1, 1, 0}));

    filterSet = 0;
    ctx.arg1 = "TLXRESHOW";   // a reshow brings its own filter
    collate();
    EXPECT_EQ(valuesOf(ctx.optionCounts), (std::vector<double>{1, 1, 0}));

    ctx.arg1 = "tlxreshow";
    collate();
    EXPECT_EQ(valuesOf(ctx.optionCounts), (std::vector<double>{2, 2, 0}));

    ctx.firstKeypad = 3;
    collate();
    EXPECT_EQ(valuesOf(ctx.optionCounts), (std::vector<double>{0, 2, 0}));
}

TEST_F(Collation, KeptCountsStandAndTheWeightedTotalNeverClears)
{
    ctx.startFrom = 1;
    ctx.optionCount = 2;
    votes({"1", "2"});
    collate();
    EXPECT_EQ(ctx.weightedVoteTotal, 2);

    votes({"2", "2"});
    keep = 1;
    ctx.abstainTotal = 7;
    collate();
    EXPECT_EQ(valuesOf(ctx.optionCounts), (std::vector<double>{1, 1, 0}));
    EXPECT_EQ(ctx.abstainTotal, 7);
    EXPECT_EQ(keep, 1);

    ctx.optionCount = 3;   // the kept array no longer fits: counted again
    collate();
    EXPECT_EQ(keep, 0);
    EXPECT_EQ(valuesOf(ctx.optionCounts), (std::vector<double>{0, 2, 0, 0}));
    EXPECT_EQ(ctx.abstainTotal, 7) << "the refit leaves abstains alone";
    EXPECT_EQ(ctx.weightedVoteTotal, 4) << "a second collation adds";
}

TEST_F(Collation, FreeNumericVotesAreNotCollated)
{
    ctx.startFrom = 1;
    ctx.optionCount = 2;
    ctx.FixedFree = 1;
    ctx.FractionalJoltTEXT = 1;
    votes({"1"});
    collate();
    EXPECT_TRUE(ctx.optionCounts.empty());
    EXPECT_EQ(ctx.votersCounted, 0);
}

TEST_F(Collation, SampleTotalsNeverShowAZeroBar)
{
    ctx.optionCount = 6;
    ctx.FixedFree = 1;
    ctx.FractionalJoltTEXT = 1;   // a sample is drawn even for a free vote
    sample = 1;
    for (int round = 0; round < 50; ++round) {
        collate();
        double sum = 0;
        for (int i = 0; i < 6; ++i) {
            EXPECT_GE(ctx.optionCounts(i), 1);
            EXPECT_LE(ctx.optionCounts(i), 24);
            sum += ctx.optionCounts(i);
        }
        EXPECT_EQ(ctx.votersCounted, sum);
        EXPECT_EQ(ctx.seriesVoterTotal, 25);
    }
}

class SeriesCollation : public Collation {
protected:
    // rows[t][k]: keypad k's answer in iteration t.
    void series(const std::vector<std::vector<float>>& rows)
    {
        ctx.vType = 2;
        ctx.Iterations = short(rows.size());
        ctx.keypadUniverse = qint32(rows[0].size());
        ctx.votes.redim(ctx.keypadUniverse, "-1");
        ctx.seriesVotes.redim(ctx.Iterations, ctx.keypadUniverse, 0);
        for (int t = 0; t < int(rows.size()); ++t)
            for (int k = 0; k < int(rows[t].size()); ++k)
                ctx.seriesVotes(t, k) = rows[t][k];
    }
    void collate() { CollateSeriesVotes(ctx, filterSet, sample); }
};

TEST_F(SeriesCollation, TotalsPerIterationAndOverall)
{
    ctx.startFrom = 1;
    ctx.optionCount = 3;
    series({{1, 2, -1, -2}, {3, 2, 2, 4}});
    collate();
    EXPECT_EQ(rowOf(ctx.seriesCounts, 0), (std::vector<double>{1, 1, 0}));
    EXPECT_EQ(rowOf(ctx.seriesCounts, 1), (std::vector<double>{0, 2, 1}));
    EXPECT_EQ(valuesOf(ctx.optionCounts), (std::vector<double>{1, 3, 1}));
    EXPECT_EQ(ctx.seriesVoterTotal, 3);

    collate();   // the voter total is carried over, never cleared
    EXPECT_EQ(ctx.seriesVoterTotal, 6);
    EXPECT_EQ(valuesOf(ctx.optionCounts), (std::vector<double>{1, 3, 1}));
}

TEST_F(SeriesCollation, RequireAllDropsAKeypadThatMissedAnIteration)
{
    ctx.startFrom = 1;
    ctx.optionCount = 3;
    ctx.RequireAll = true;
    series({{1, 2, 3}, {2, -1, 3}});
    collate();
    EXPECT_EQ(rowOf(ctx.seriesCounts, 0), (std::vector<double>{1, 0, 1}));
    EXPECT_EQ(rowOf(ctx.seriesCounts, 1), (std::vector<double>{0, 1, 1}));
    EXPECT_EQ(ctx.seriesVoterTotal, 2);
    EXPECT_EQ(ctx.groupFilter(1), 0) << "the filter itself is narrowed";
}

TEST_F(SeriesCollation, FromZeroCountsOptionZero)
{
    ctx.startFrom = 0;
    ctx.optionCount = 3;
    series({{0, 2, -2, -1}});
    collate();
    EXPECT_EQ(valuesOf(ctx.optionCounts), (std::vector<double>{1, 0, 1}));
    EXPECT_EQ(ctx.seriesVoterTotal, 2);
}

struct WeightCase {
    const char* name;
    short useWeighting;
    const char* voteType;
    std::vector<double> given;
    std::vector<double> expectedFirstTwo;
};

class SeriesWeights : public SeriesCollation, public ::testing::WithParamInterface<WeightCase> {};

TEST_P(SeriesWeights, WeighEachPlace)
{
    const WeightCase& c = GetParam();
    ctx.startFrom = 1;
    ctx.optionCount = 2;
    ctx.UseWeighting = c.useWeighting;
    ctx.controllerVoteType = c.voteType;
    ctx.SeriesWeighting.redim(9, 0);
    for (int i = 0; i < int(c.given.size()); ++i)
        ctx.SeriesWeighting(i) = c.given[i];
    series({{1}, {2}, {2}});
    collate();
    EXPECT_EQ(ctx.seriesCounts(0, 0), c.expectedFirstTwo[0]);
    EXPECT_EQ(ctx.seriesCounts(1, 1), c.expectedFirstTwo[1]);
}

INSTANTIATE_TEST_SUITE_P(Weights, SeriesWeights,
                         ::testing::Values(WeightCase{"Plain", 0, "9", {}, {1, 1}},
                                           WeightCase{"RankedFive", 0, "5", {}, {3, 2}},
                                           WeightCase{"RankedOne", 0, "1", {}, {3, 2}},
                                           WeightCase{"FromSettings", 1, "5", {4, 0.5}, {4, 0.5}},
                                           WeightCase{"NonePositive", 1, "9", {0, -2, 0}, {1, 1}}),
                         [](const auto& info) { return std::string(info.param.name); });

TEST_F(SeriesCollation, ParticipantWeightsCountWholePeopleHalfToEven)
{
    ctx.startFrom = 1;
    ctx.optionCount = 4;
    series({{1, 2, 3, 4}});
    // Unlike a graph vote, a record numbered 0 is still weighed.
    weights({{1, 2.5}, {0, 3.5}, {1, 0.4}, {1, 1.4}, {1, 9}});
    collate();
    EXPECT_EQ(valuesOf(ctx.optionCounts), (std::vector<double>{2, 4, 0, 1}));
    EXPECT_EQ(ctx.seriesVoterTotal, 4);
}

TEST_F(SeriesCollation, SampleOverwritesWithNonZeroTotals)
{
    ctx.optionCount = 3;
    sample = 1;
    series({{1, 1}, {1, 1}});
    ctx.seriesVoterTotal = 100;
    collate();
    for (int t = 0; t < 2; ++t)
        for (int o = 0; o < 3; ++o) {
            EXPECT_GE(ctx.seriesCounts(t, o), 1);
            EXPECT_GE(ctx.optionCounts(o), 1);
        }
    EXPECT_EQ(ctx.seriesVoterTotal, 25);
}

TEST_F(SeriesCollation, IterationsPastTheWeightTableAddNothingAndAreReported)
{
    ctx.startFrom = 1;
    ctx.optionCount = 1;
    std::vector<std::vector<float>> rows(11, std::vector<float>{1});
    series(rows);
    collate();
    EXPECT_EQ(ctx.optionCounts(0), 10);
    EXPECT_EQ(ctx.seriesCounts(10, 0), 0);
    EXPECT_EQ(ctx.seriesVoterTotal, 1);
    EXPECT_TRUE(run.errLog().contains("CollateSeriesVotes"));
}

TEST(PercentFormat, PlacesAfterThePoint)
{
    TestRun run;
    for (auto [dp, format] : std::vector<std::pair<double, const char*>>{
             {0, "0%"}, {1, "0.0%"}, {2, "0.00%"}, {3, "0.000%"}, {-1, "0%"}}) {
        run.ctx.PercentDP = dp;
        EXPECT_EQ(GetPercentFormatString(run.ctx), format) << dp;
    }
}

} // namespace
