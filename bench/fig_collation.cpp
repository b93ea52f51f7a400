// Collation: per-keypad votes into per-option totals, for a plain vote of 10,000
// keypads and a series vote of 10,000 keypads by 50 iterations, against counting the
// same values with no rules.
#include "charts/collation.h"
#include "figure.h"
#include "vote_setup.h"

namespace tallix::bench {
namespace {

void CollateFigure(benchmark::State& state)
{
    BigVote vote;
    vote.FillVotes();
    for (auto _ : state) {
        short filterAlreadySet = 0, sample = 0, keepCounts = 0;
        vote.ctx.optionCounts.redim(kOptions);
        CollateVotes(vote.ctx, filterAlreadySet, sample, keepCounts);
        benchmark::ClobberMemory();
    }
}

void CollateFloor(benchmark::State& state)
{
    BigVote vote;
    vote.FillVotes();
    std::vector<double> counts(kOptions + 1);
    for (auto _ : state) {
        std::fill(counts.begin(), counts.end(), 0.0);
        for (int i = 0; i < vote.ctx.keypadUniverse; ++i) {
            bool ok = false;
            const int v = vote.ctx.votes(i).toInt(&ok);
            if (ok && v >= 0 && v < kOptions)
                counts[size_t(v)] += 1;
        }
        benchmark::DoNotOptimize(counts.data());
    }
}

void CollateSeriesFigure(benchmark::State& state)
{
    BigVote vote;
    vote.FillSeriesVotes();
    for (auto _ : state) {
        short filterAlreadySet = 0, sample = 0;
        vote.ctx.seriesCounts.redim(kSeriesIterations, kOptions);
        CollateSeriesVotes(vote.ctx, filterAlreadySet, sample);
        benchmark::ClobberMemory();
    }
}

void CollateSeriesFloor(benchmark::State& state)
{
    BigVote vote;
    vote.FillSeriesVotes();
    std::vector<double> counts(size_t(kSeriesIterations) * (kOptions + 1));
    for (auto _ : state) {
        std::fill(counts.begin(), counts.end(), 0.0);
        for (int it = 0; it < kSeriesIterations; ++it)
            for (int i = 0; i < vote.ctx.keypadUniverse; ++i) {
                const float v = vote.ctx.seriesVotes(it, i);
                if (v >= 0 && v < kOptions)
                    counts[size_t(it) * (kOptions + 1) + size_t(v)] += 1;
            }
        benchmark::DoNotOptimize(counts.data());
    }
}

bool probeNotBuilt(const char* procedure, bool series)
{
    BigVote vote(10);
    vote.ctx.ini.logEventsToFile = true;
    short filterAlreadySet = 0, sample = 0, keepCounts = 0;
    if (series) {
        vote.FillSeriesVotes();
        CollateSeriesVotes(vote.ctx, filterAlreadySet, sample);
    } else {
        vote.FillVotes();
        CollateVotes(vote.ctx, filterAlreadySet, sample, keepCounts);
    }
    return vote.LogSaysNotBuilt(procedure);
}

const RegisterFigure plain{Figure{
    .order = 3,
    .key = "collate",
    .title = "3 collation: CollateVotes",
    .floorTitle = "count the votes, no rules",
    .deck = "10,000 keypads, 12 options",
    .figure = CollateFigure,
    .floor = CollateFloor,
    .notBuilt = [] { return probeNotBuilt("CollateVotes", false); },
}};

const RegisterFigure series{Figure{
    .order = 3,
    .key = "collate_series",
    .title = "3 collation: CollateSeriesVotes",
    .floorTitle = "count the selections, no rules",
    .deck = "10,000 keypads x 50 iterations, 12 options",
    .targetMs = 5,
    .figure = CollateSeriesFigure,
    .floor = CollateSeriesFloor,
    .notBuilt = [] { return probeNotBuilt("CollateSeriesVotes", true); },
}};

} // namespace
} // namespace tallix::bench
