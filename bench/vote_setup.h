#pragma once
// A vote of many keypads in memory, over the same manual clock and pump as the tests,
// for the figures that time the logic without a program around it.

#include "controller/comms.h"
#include "controller/controller_link.h"
#include "support/test_context.h"

#include <QString>
#include <vector>

namespace tallix::bench {

constexpr int kKeypads = 10000;
constexpr int kSeriesIterations = 50;
constexpr int kOptions = 12;

// One controller text with a record for each keypad: "[k;v]," ... CR LF.
QString BurstText(int keypads = kKeypads);

struct BigVote {
    testing::TestRun run;
    RunContext& ctx = run.ctx;
    RecordingControllerLink link;
    Comms comms{ctx, link};

    explicit BigVote(int keypads = kKeypads);
    // Every keypad's vote and every series selection, as a burst would leave them.
    void FillVotes();
    void FillSeriesVotes();
    // Whether the debug log says `procedure` is not built yet (turns the log on).
    bool LogSaysNotBuilt(const QString& procedure) const;
};

} // namespace tallix::bench
