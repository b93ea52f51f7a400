// Burst: one controller text of 10,000 keypad records decoded into the run state,
// against splitting the same text into its records with no rules.
#include "figure.h"
#include "vote_setup.h"

#include <QStringView>

namespace tallix::bench {
namespace {

void BurstFigure(benchmark::State& state)
{
    BigVote vote;
    const QString text = BurstText();
    for (auto _ : state) {
        state.PauseTiming();
        ResetVoteArrays(vote.ctx);
        vote.ctx.votesCast = 0;
        state.ResumeTiming();
        vote.comms.setTxt_data(text);
    }
    if (vote.ctx.votesCast != kKeypads)
        state.SkipWithError("the burst did not count every keypad");
}

void BurstFloor(benchmark::State& state)
{
    const QString text = BurstText();
    std::vector<QStringView> records;
    records.reserve(kKeypads + 1);
    for (auto _ : state) {
        records.clear();
        const QStringView all(text);
        qsizetype from = 0;
        for (qsizetype at; (at = all.indexOf(u',', from)) >= 0; from = at + 1)
            records.push_back(all.mid(from, at - from));
        benchmark::DoNotOptimize(records.data());
    }
    if (records.size() != size_t(kKeypads))
        state.SkipWithError("the floor split the wrong number of records");
}

const RegisterFigure reg{Figure{
    .order = 2,
    .key = "burst",
    .title = "2 burst: 10,000 records decoded",
    .floorTitle = "split into records",
    .deck = "one text of 10,000 records, 12 options",
    .targetRatio = 10,
    .figure = BurstFigure,
    .floor = BurstFloor,
}};

} // namespace
} // namespace tallix::bench
