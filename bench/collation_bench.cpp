// Collation at the end of a vote: a 10,000-keypad vote and a 10,000-keypad series vote
// of 50 iterations. The series collation should stay under 5 ms, so that a reshow or a
// re-filter that collates again shows no pause.
#include "charts/collation.h"
#include "foundation/clock.h"
#include "vote/run_context.h"

#include <benchmark/benchmark.h>

#include <random>

using namespace tallix;

namespace {

constexpr int kKeypads = 10000;
constexpr int kIterations = 50;
constexpr int kOptions = 10;

struct BenchRun {
    ManualClock clock;
    RunContext ctx;

    BenchRun()
    {
        ctx.clock = &clock;
        ctx.keypadUniverse = kKeypads;
        ctx.optionCount = kOptions;
        ctx.startFrom = 1;
        ctx.allowAbstain = true;
        ctx.votes.redim(kKeypads, QStringLiteral("-1"));
    }
};

// Every keypad voted: mostly options, some abstains, some multi-digit and text votes
// that take the general number reader.
void BM_CollateVotes(benchmark::State& state)
{
    BenchRun run;
    std::mt19937 rnd(7);
    for (int k = 0; k < kKeypads; ++k) {
        const int r = int(rnd() % 100);
        run.ctx.votes(k) = r < 90 ? QString::number(1 + r % kOptions) : r < 95 ? QStringLiteral("X") : QStringLiteral("3.4");
    }
    run.ctx.ParticipantWeighting = state.range(0) != 0;
    run.ctx.participants.redim(kKeypads);
    for (int k = 0; k <= kKeypads; ++k) {
        run.ctx.participants(k).number = k;
        run.ctx.participants(k).weighting = 1.5;
    }
    short filterSet = 0, sample = 0, keep = 0;
    for (auto _ : state) {
        CollateVotes(run.ctx, filterSet, sample, keep);
        benchmark::DoNotOptimize(run.ctx.optionCounts.data());
    }
    state.SetItemsProcessed(state.iterations() * kKeypads);
}
BENCHMARK(BM_CollateVotes)->Arg(0)->Arg(1)->Unit(benchmark::kMicrosecond);

// Every iteration weighted from the settings, so that all 50 are counted.
void BM_CollateSeriesVotes(benchmark::State& state)
{
    BenchRun run;
    run.ctx.vType = 2;
    run.ctx.Iterations = kIterations;
    run.ctx.RequireAll = state.range(0) != 0;
    run.ctx.UseWeighting = 1;
    run.ctx.SeriesWeighting.redim(kIterations - 1, 1.0);
    run.ctx.ParticipantWeighting = true;
    run.ctx.participants.redim(kKeypads);
    for (int k = 0; k <= kKeypads; ++k)
        run.ctx.participants(k).weighting = 2;
    run.ctx.seriesVotes.redim(kIterations, kKeypads, -1);
    std::mt19937 rnd(11);
    for (int t = 0; t < kIterations; ++t)
        for (int k = 0; k < kKeypads; ++k)
            run.ctx.seriesVotes(t, k) = rnd() % 50 == 0 ? -1.0f : float(1 + rnd() % kOptions);
    short filterSet = 0, sample = 0;
    for (auto _ : state) {
        run.ctx.seriesVoterTotal = 0;   // never cleared by the routine itself
        CollateSeriesVotes(run.ctx, filterSet, sample);
        benchmark::DoNotOptimize(run.ctx.seriesCounts.row(0));
    }
    state.SetItemsProcessed(state.iterations() * kKeypads * kIterations);
}
BENCHMARK(BM_CollateSeriesVotes)->Arg(0)->Arg(1)->Unit(benchmark::kMicrosecond);

} // namespace

BENCHMARK_MAIN();
