#pragma once
// One figure of the performance table: the program's own work against the fastest the
// machine can do the same work, both measured in the same run. Each figure lives in its
// own file and registers itself here.

#include <benchmark/benchmark.h>

#include <QString>
#include <functional>
#include <vector>

namespace tallix::bench {

struct Figure {
    int order = 0;           // place in the table
    QString key;             // benchmark name stem: <key>/figure, <key>/floor
    QString title;           // what the row measures
    QString floorTitle;      // what the floor is
    QString deck;            // the deck or data it used
    bool memory = false;     // reports peak resident kB (counter "peak_kB") instead of time
    bool process = false;    // runs programs: few iterations, times taken by the benchmark itself
    bool manualFloor = false; // the floor too sets its own iteration times
    double targetRatio = 0;  // figure / floor must stay under this; 0: no target
    double targetMs = 0;     // absolute target; 0: none
    std::function<void(benchmark::State&)> figure;
    std::function<void(benchmark::State&)> floor;
    // True when the procedures it measures still only log that they are not built.
    std::function<bool()> notBuilt;
    QString notBuiltTitle;   // the row's title while notBuilt() holds, if it differs
};

std::vector<Figure>& Figures();

struct RegisterFigure {
    explicit RegisterFigure(Figure f) { Figures().push_back(std::move(f)); }
};

} // namespace tallix::bench
