// Start-up: from the process's start to the vote handed to the event loop with its
// votes-cast window up, against a bare window of ours shown the same way.
#include "bench_support.h"

#include <QFile>
#include "figure.h"

namespace tallix::bench {
namespace {

void StartupFigure(benchmark::State& state)
{
    VoteSandbox& box = SharedSandbox();
    const QString deck = box.path("startup.pptx");
    for (auto _ : state) {
        CopyFilePlain(BigDeck(), deck); // the run may write the deck at its end
        const QString slide = QString::number(kBigDeckLastQuestion);
        // The vote stays open for the operator once started: Esc ends it after the mark.
        const QString script = box.path("startup-operator.txt");
        {
            QFile f(script);
            f.open(QIODevice::WriteOnly);
            f.write("1.2 key Escape\n");
        }
        const ChildRun r = RunChild(BinDir() + "/tallix-vote",
                                    {"--deck", deck, "--operator-script", script, "TLXVOTE," + slide}, box.env());
        if (!r.marks.contains("handover")) {
            state.SkipWithError("tallix-vote printed no handover mark");
            break;
        }
        state.SetIterationTime(double(r.marks["handover"] - r.startNs) / 1e9);
    }
}

void StartupFloor(benchmark::State& state)
{
    VoteSandbox& box = SharedSandbox();
    for (auto _ : state) {
        const ChildRun r = RunChild(BinDir() + "/tallix-bench-bare-window", {}, box.env());
        if (!r.marks.contains("handover")) {
            state.SkipWithError("the bare window printed no mark");
            break;
        }
        state.SetIterationTime(double(r.marks["handover"] - r.startNs) / 1e9);
    }
}

const RegisterFigure reg{Figure{
    .order = 1,
    .key = "startup",
    .title = "1 start-up to the votes-cast window",
    .floorTitle = "bare Qt window shown",
    .deck = BigDeckName(),
    .process = true,
    .manualFloor = true,
    .targetRatio = 4,
    .figure = StartupFigure,
    .floor = StartupFloor,
    .notBuilt = [] { return SharedSandbox().LogSaysNotBuilt("PrepareVotesCastWindow"); },
    .notBuiltTitle = "1 start-up to execVote hand-over (votes-cast window not built yet)",
}};

} // namespace
} // namespace tallix::bench
