// Peak resident memory of a 10,000-keypad vote: the run state, a burst of every
// keypad's vote and its collation, in a child process of its own, against the same
// child with a one-keypad vote.
#include "bench_support.h"
#include "charts/collation.h"
#include "figure.h"
#include "vote_setup.h"

#include <QFile>
#include <QProcessEnvironment>

#include <cstdio>

namespace tallix::bench {
namespace {

void measure(benchmark::State& state, int keypads)
{
    long peak = 0;
    QStringList env;
    for (const QString& e : QProcessEnvironment::systemEnvironment().toStringList())
        env << e;
    for (auto _ : state) {
        const ChildRun r = RunChild(BinDir() + "/tallix-bench-table", {"--child-vote", QString::number(keypads)}, env);
        if (r.exitCode != 0) {
            state.SkipWithError("the child vote failed");
            break;
        }
        // wait4's figure would carry the parent's pages over the exec; the child's own is exact.
        peak = std::max(peak, long(r.marks.value("peak_kB")));
        state.SetIterationTime(double(r.endNs - r.startNs) / 1e9);
    }
    state.counters["peak_kB"] = double(peak);
}

const RegisterFigure reg{Figure{
    .order = 6,
    .key = "memory",
    .title = "6 peak resident, 10,000-keypad vote",
    .floorTitle = "same process, 1 keypad",
    .deck = "burst of 10,000 records, collated",
    .memory = true,
    .process = true,
    .manualFloor = true,
    .figure = [](benchmark::State& s) { measure(s, kKeypads); },
    .floor = [](benchmark::State& s) { measure(s, 1); },
}};

} // namespace

// The child's whole life; its peak resident set is read by the parent from wait4.
int RunChildVote(int keypads)
{
    BigVote vote(keypads);
    vote.comms.setTxt_data(BurstText(keypads));
    short filterAlreadySet = 0, sample = 0, keepCounts = 0;
    CollateVotes(vote.ctx, filterAlreadySet, sample, keepCounts);
    QFile status("/proc/self/status");
    status.open(QIODevice::ReadOnly);
    for (const QByteArray& line : status.readAll().split('\n'))
        if (line.startsWith("VmHWM:"))
            std::printf("TALLIX_BENCH_MARK peak_kB %lld\n", line.mid(6).trimmed().split(' ').value(0).toLongLong());
    std::fflush(stdout);
    return vote.ctx.votesCast == keypads ? 0 : 1;
}

} // namespace tallix::bench
