// Close: from the operator's end key to the process's end, the deck written with the
// chart's picture, against copying the same deck with fsync.
#include "bench_support.h"
#include "figure.h"

#include <QFile>

namespace tallix::bench {
namespace {

// Late enough that start-up is over on a slow machine; the wait is not measured.
// The second Space closes the result window, which stays up until the presenter moves
// on; sent right after the first, it is taken as soon as the picture is on the slide.
const char* const kOperatorScript = "1.5 key Space\n1.52 key Space\n";

void CloseFigure(benchmark::State& state)
{
    VoteSandbox& box = SharedSandbox();
    const QString deck = box.path("close.pptx");
    const QString script = box.path("close-operator.txt");
    {
        QFile f(script);
        f.open(QIODevice::WriteOnly);
        f.write(kOperatorScript);
    }
    for (auto _ : state) {
        CopyFilePlain(BigDeck(), deck);
        const QString slide = QString::number(kBigDeckLastQuestion);
        const ChildRun r =
            RunChild(BinDir() + "/tallix-vote", {"--deck", deck, "--operator-script", script, "TLXVOTE," + slide},
                     box.env());
        if (!r.marks.contains("key")) {
            state.SkipWithError("the vote ended before the end key");
            break;
        }
        state.SetIterationTime(double(r.endNs - r.marks["key"]) / 1e9);
    }
}

void CloseFloor(benchmark::State& state)
{
    const QString copy = SharedSandbox().path("close-floor.pptx");
    for (auto _ : state)
        CopyFileWithFsync(BigDeck(), copy);
}

const RegisterFigure reg{Figure{
    .order = 4,
    .key = "close",
    .title = "4 close: end key to deck written",
    .floorTitle = "copy of the deck + fsync",
    .deck = BigDeckName() + "; slide 60: 12-option 3D bar, no growing",
    .process = true,
    .targetRatio = 10,
    .figure = CloseFigure,
    .floor = CloseFloor,
    // While the count-up runner is a stub the vote ends at once and never sees the key.
    .notBuilt = [] { return SharedSandbox().LogSaysNotBuilt("closeVote") || SharedSandbox().LogSaysNotBuilt("DoCountUpGraphVote"); },
}};

} // namespace
} // namespace tallix::bench
