#include "charts/collation.h"
#include "support/error_reports.h"
#include "support/qt_print.h"
#include "support/test_context.h"

#include <gtest/gtest.h>

#include <vector>

using namespace tallix;
using tallix::testing::ExpectErrorReports;
using tallix::testing::TestRun;
using Totals = std::vector<double>;

namespace {

Totals valuesOf(const VbArray<double>& a)
{
    return {a.begin(), a.end()};
}

Totals rowOf(const VbArray2<double>& a, int r)
{
    return {a.row(r), a.row(r) + a.ubound2() + 1};
}

class Collation : public ::testing::Test {
protected:
    TestRun run;
    RunContext& ctx = run.ctx;
    short filterSet = 0, sample = 0, keep = 0;

    void votes(short startFrom, short options, const QStringList& v)
    {
        ctx.startFrom = startFrom;
        ctx.optionCount = options;
        ctx.keypadUniverse = qint32(v.size());
        ctx.votes.redim(int(v.size()));   // the top element belongs to no keypad
        for (int i = 0; i < v.size(); ++i)
            ctx.votes(i) = v[i];
    }
    // rows[t][k]: keypad k's answer in iteration t.
    void series(short startFrom, short options, const std::vector<std::vector<float>>& rows)
    {
        votes(startFrom, options, QStringList(int(rows[0].size()), "-1"));
        ctx.vType = 2;
        ctx.Iterations = short(rows.size());
        ctx.seriesVotes.redim(ctx.Iterations, ctx.keypadUniverse, 0);
        for (int t = 0; t < int(rows.size()); ++t)
            for (int k = 0; k < int(rows[t].size()); ++k)
                ctx.seriesVotes(t, k) = rows[t][k];
    }
    void weights(const std::vector<std::pair<qint32, double>>& byKeypad)
    {
        ctx.ParticipantWeighting = true;
        ctx.participants.redim(int(byKeypad.size()));
        for (int k = 1; k <= int(byKeypad.size()); ++k)
            ctx.participants(k) = Participant{{}, byKeypad[k - 1].first, byKeypad[k - 1].second, true};
    }
    void collate() { CollateVotes(ctx, filterSet, sample, keep); }
    void collateSeries() { CollateSeriesVotes(ctx, filterSet, sample); }
};

struct VoteCase {
    const char* name;
    short startFrom;
    QStringList votes;   // of four options, abstain allowed
    Totals counts;
    short voters;
    double abstains;
    bool reportsFailure;
};
class CollateVoteCases : public Collation, public ::testing::WithParamInterface<VoteCase> {};

TEST_P(CollateVoteCases, TotalsPerOption)
{
    const VoteCase& c = GetParam();
    ctx.allowAbstain = true;
    votes(c.startFrom, 4, c.votes);
    ExpectErrorReports reports;
    collate();
    EXPECT_EQ(reports.count() > 0, c.reportsFailure);
    EXPECT_EQ(valuesOf(ctx.optionCounts), c.counts);
    EXPECT_EQ(ctx.votersCounted, c.voters);
    EXPECT_EQ(ctx.weightedVoteTotal, c.voters);
    EXPECT_EQ(ctx.abstainTotal, c.abstains);
    EXPECT_EQ(run.errLog().contains("CollateVotes"), c.reportsFailure);
}

INSTANTIATE_TEST_SUITE_P(
    Votes, CollateVoteCases,
    ::testing::Values(
        VoteCase{"FromOneWithAbstains", 1, {"1", "4", "5", "0", "X", "-2", "-1"}, {1, 0, 0, 1, 0}, 2, 3, false},
        VoteCase{"FractionsHalfToEven", 1, {"2.6", "1.5", "2.5"}, {1, 0, 2, 0, 0}, 3, 0, false},
        VoteCase{"TextAroundTheNumber", 1, {" 3", "#2", "3%"}, {0, 1, 2, 0, 0}, 3, 0, false},
        // Option 0 exists, so "0" is no abstain; the option count itself lands in the
        // spare top element, never drawn but counted.
        VoteCase{"FromZero", 0, {"0", "2", "0", "4"}, {2, 0, 1, 0, 1}, 4, 0, false},
        // "X" reads as 0 but is no integer: reported, and the tally goes on.
        VoteCase{"FromZeroTextFails", 0, {"X", "1"}, {0, 1, 0, 0, 0}, 2, 0, true}),
    [](const auto& info) { return std::string(info.param.name); });

TEST_F(Collation, ParticipantWeightsNeedAPositiveNumber)
{
    votes(1, 2, {"1", "2", "2"});
    // Keypad 2's record is numbered 0; keypad 3 lies past the list's last index.
    weights({{1, 2.5}, {0, 4.0}});
    collate();
    EXPECT_EQ(valuesOf(ctx.optionCounts), (Totals{2.5, 2, 0}));
    EXPECT_EQ(ctx.votersCounted, 3);
    EXPECT_DOUBLE_EQ(ctx.weightedVoteTotal, 4.5);
}

TEST_F(Collation, FiltersDecideWhoCounts)
{
    votes(1, 2, {"1", "1", "2", "2"});
    ctx.groupFilter.redim(4, 0);
    ctx.groupFilter(0) = ctx.groupFilter(2) = 1;
    filterSet = 1;
    collate();
    EXPECT_EQ(valuesOf(ctx.optionCounts), (Totals{1, 1, 0}));

    filterSet = 0;
    ctx.arg1 = "TLXRESHOW";   // a reshow brings its own filter
    collate();
    EXPECT_EQ(valuesOf(ctx.optionCounts), (Totals{1, 1, 0}));
    ctx.arg1 = "tlxreshow";
    ctx.firstKeypad = 2;
    collate();
    EXPECT_EQ(valuesOf(ctx.optionCounts), (Totals{1, 2, 0}));
}

TEST_F(Collation, KeptCountsStandAndTheWeightedTotalNeverClears)
{
    votes(1, 2, {"1", "2"});
    collate();
    votes(1, 2, {"2", "2"});
    keep = 1;
    ctx.abstainTotal = 7;
    collate();
    EXPECT_EQ(valuesOf(ctx.optionCounts), (Totals{1, 1, 0}));

    ctx.optionCount = 3;   // the kept array no longer fits: counted again
    collate();
    EXPECT_EQ(keep, 0);
    EXPECT_EQ(valuesOf(ctx.optionCounts), (Totals{0, 2, 0, 0}));
    EXPECT_EQ(ctx.abstainTotal, 7) << "the refit leaves abstains alone";
    EXPECT_EQ(ctx.weightedVoteTotal, 4) << "a second collation adds";

    ctx.FixedFree = ctx.FractionalJoltTEXT = 1;   // free numeric: no option totals
    keep = 0;
    collate();
    EXPECT_EQ(valuesOf(ctx.optionCounts), (Totals{0, 2, 0, 0}));
}

TEST_F(Collation, SamplesNeverShowAZeroBar)
{
    series(1, 6, {{1}, {1}});
    sample = 1;
    for (int round = 0; round < 50; ++round) {
        collate();
        double sum = 0;
        for (int i = 0; i < 6; ++i) {
            EXPECT_GE(ctx.optionCounts(i), 1);
            sum += ctx.optionCounts(i);
        }
        EXPECT_EQ(ctx.votersCounted, sum);
        ctx.seriesVoterTotal = 100;
        collateSeries();
        for (int o = 0; o < 6; ++o)
            EXPECT_GE(ctx.seriesCounts(round % 2, o), 1);
        EXPECT_EQ(ctx.seriesVoterTotal, 25);
    }
}

TEST_F(Collation, SeriesTotalsPerIterationAndVoterTotalCarriedOver)
{
    series(1, 3, {{1, 2, -1, -2}, {3, 2, 2, 4}});
    collateSeries();
    EXPECT_EQ(rowOf(ctx.seriesCounts, 0), (Totals{1, 1, 0}));
    EXPECT_EQ(rowOf(ctx.seriesCounts, 1), (Totals{0, 2, 1}));
    EXPECT_EQ(valuesOf(ctx.optionCounts), (Totals{1, 3, 1}));
    EXPECT_EQ(ctx.seriesVoterTotal, 3);
    collateSeries();
    EXPECT_EQ(ctx.seriesVoterTotal, 6);
    EXPECT_EQ(valuesOf(ctx.optionCounts), (Totals{1, 3, 1}));

    ctx.RequireAll = true;   // keypad 3 missed the first iteration: out of both
    collateSeries();
    EXPECT_EQ(rowOf(ctx.seriesCounts, 1), (Totals{0, 1, 1}));
    EXPECT_EQ(ctx.seriesVoterTotal, 8);
    EXPECT_EQ(ctx.groupFilter(2), 0) << "the filter itself is narrowed";
}

struct WeightCase {
    const char* name;
    short useWeighting;
    const char* voteType;
    Totals given;
    Totals firstTwo;
};
class SeriesWeights : public Collation, public ::testing::WithParamInterface<WeightCase> {};

TEST_P(SeriesWeights, WeighEachPlace)
{
    series(1, 2, {{1}, {2}, {2}});
    ctx.UseWeighting = GetParam().useWeighting;
    ctx.controllerVoteType = GetParam().voteType;
    ctx.SeriesWeighting.redim(9, 0);
    std::copy(GetParam().given.begin(), GetParam().given.end(), ctx.SeriesWeighting.begin());
    collateSeries();
    EXPECT_EQ((Totals{ctx.seriesCounts(0, 0), ctx.seriesCounts(1, 1)}), GetParam().firstTwo);
}

INSTANTIATE_TEST_SUITE_P(Weights, SeriesWeights,
                         ::testing::Values(WeightCase{"Plain", 0, "9", {}, {1, 1}},
                                           WeightCase{"RankedFive", 0, "5", {}, {3, 2}},
                                           WeightCase{"RankedOne", 0, "1", {}, {3, 2}},
                                           WeightCase{"FromSettings", 1, "5", {4, 0.5}, {4, 0.5}},
                                           WeightCase{"NonePositive", 1, "9", {0, -2, 0}, {1, 1}}),
                         [](const auto& info) { return std::string(info.param.name); });

TEST_F(Collation, SeriesCountsWholePeopleAndWeighsPlacesPastTheTenthAsOne)
{
    series(1, 4, {{1, 2, 3, 4}});
    // Half to even, and a record numbered 0 is still weighed.
    weights({{1, 2.5}, {0, 3.5}, {1, 0.4}, {1, 1.4}, {1, 9}});
    collateSeries();
    EXPECT_EQ(valuesOf(ctx.optionCounts), (Totals{2, 4, 0, 1}));
    EXPECT_EQ(ctx.seriesVoterTotal, 4);

    // Weights exist for ten places; the eleventh weighs 1, and nothing is reported.
    series(1, 1, std::vector<std::vector<float>>(11, {1}));
    ctx.ParticipantWeighting = false;
    collateSeries();
    EXPECT_EQ(ctx.optionCounts(0), 11);
    EXPECT_EQ(ctx.seriesCounts(10, 0), 1);
}

TEST(PercentFormat, PlacesAfterThePoint)
{
    TestRun run;
    for (auto [dp, format] : std::vector<std::pair<double, const char*>>{{0, "0%"}, {1, "0.0%"}, {3, "0.000%"}, {-1, "0%"}}) {
        run.ctx.PercentDP = dp;
        EXPECT_EQ(GetPercentFormatString(run.ctx), format);
    }
}

} // namespace
