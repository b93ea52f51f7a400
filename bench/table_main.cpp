// tallix-bench-table: runs every figure and its floor in one run and prints one table.
// Google Benchmark's own flags apply (--benchmark_filter=burst, for one figure).
#include "bench_support.h"
#include "figure.h"

#include <QGuiApplication>

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <map>
#include <string>

namespace tallix::bench {

std::vector<Figure>& Figures()
{
    static std::vector<Figure> all;
    return all;
}

int RunChildVote(int keypads);

namespace {

class TableReporter : public benchmark::ConsoleReporter {
public:
    std::map<std::string, Run> runs;
    void ReportRuns(const std::vector<Run>& report) override
    {
        for (const Run& r : report)
            if (r.run_type == Run::RT_Iteration)
                runs[r.run_name.function_name] = r; // without "/iterations:5/manual_time"
        ConsoleReporter::ReportRuns(report);
    }
};

QString formatMs(double ms)
{
    if (ms >= 100)
        return QString::number(ms, 'f', 0) + " ms";
    if (ms >= 1)
        return QString::number(ms, 'f', 1) + " ms";
    return QString::number(ms * 1000, 'f', 0) + " µs";
}

QString cell(const TableReporter& rep, const Figure& f, const char* which, double* value)
{
    const auto it = rep.runs.find((f.key + "/" + which).toStdString());
    if (it == rep.runs.end())
        return "-";
    const benchmark::BenchmarkReporter::Run& r = it->second;
    if (r.error_occurred)
        return QString::fromStdString("failed: " + r.error_message);
    if (f.memory) {
        const auto c = r.counters.find("peak_kB");
        *value = c == r.counters.end() ? 0 : double(c->second);
        return QString::number(*value / 1024.0, 'f', 1) + " MiB";
    }
    *value = r.GetAdjustedRealTime(); // milliseconds: every figure is registered so
    return formatMs(*value);
}

void printTable(const TableReporter& rep, const std::vector<Figure>& figures)
{
    std::printf("\n| Figure | Deck or data | Time | Floor | Floor is | Ratio | Target |\n");
    std::printf("|---|---|---:|---:|---|---:|---|\n");
    for (const Figure& f : figures) {
        double fig = 0, flo = 0;
        QString figText = cell(rep, f, "figure", &fig);
        const QString floText = cell(rep, f, "floor", &flo);
        const bool measured = rep.runs.count((f.key + "/figure").toStdString()) > 0;
        const bool notBuilt = measured && f.notBuilt && f.notBuilt();
        QString title = notBuilt && !f.notBuiltTitle.isEmpty() ? f.notBuiltTitle : f.title;
        if (notBuilt && f.notBuiltTitle.isEmpty())
            title += " (not built yet)";
        // A stub's time says nothing about the procedure that will replace it.
        // A figure with a title for the meantime measures a named stand-in point instead.
        const bool stub = notBuilt && f.notBuiltTitle.isEmpty();
        if (stub) {
            figText = "(not built yet)";
            fig = 0;
        }
        const QString ratio = fig > 0 && flo > 0 ? QString::number(fig / flo, 'f', 2) + "x" : QString("-");
        QString target = "-";
        if (f.targetRatio > 0)
            target = QStringLiteral("within %1x").arg(f.targetRatio);
        if (f.targetMs > 0)
            target = QStringLiteral("under %1 ms").arg(f.targetMs);
        if (fig > 0 && !stub && (f.targetRatio > 0 || f.targetMs > 0)) {
            const bool met = f.targetRatio > 0 ? (flo > 0 && fig / flo <= f.targetRatio) : fig <= f.targetMs;
            target += met ? ": met" : ": MISSED";
        }
        std::printf("| %s | %s | %s | %s | %s | %s | %s |\n", qPrintable(title), qPrintable(f.deck), qPrintable(figText),
                    qPrintable(floText), qPrintable(f.floorTitle), qPrintable(ratio), qPrintable(target));
    }
    std::fflush(stdout);
}

} // namespace
} // namespace tallix::bench

int main(int argc, char** argv)
{
    using namespace tallix::bench;
    if (argc == 3 && std::strcmp(argv[1], "--child-vote") == 0) {
        QCoreApplication app(argc, argv);
        return RunChildVote(std::atoi(argv[2]));
    }
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QGuiApplication app(argc, argv);
    benchmark::Initialize(&argc, argv);

    std::fprintf(stderr, "tallix-bench-table: the bench deck is %s\n", qPrintable(BigDeck()));
    std::vector<Figure> figures = Figures();
    std::stable_sort(figures.begin(), figures.end(),
                     [](const Figure& a, const Figure& b) { return std::tie(a.order, a.key) < std::tie(b.order, b.key); });
    for (const Figure& f : figures) {
        auto* fig = benchmark::RegisterBenchmark((f.key + "/figure").toStdString().c_str(), f.figure);
        auto* flo = benchmark::RegisterBenchmark((f.key + "/floor").toStdString().c_str(), f.floor);
        fig->Unit(benchmark::kMillisecond);
        flo->Unit(benchmark::kMillisecond);
        if (f.process) {
            // Each iteration is a whole program run: a handful is enough and keeps the run short.
            fig->UseManualTime()->Iterations(5);
            flo->Iterations(f.manualFloor ? 5 : 10);
            if (f.manualFloor)
                flo->UseManualTime();
            else
                flo->UseRealTime();
        } else {
            fig->UseRealTime();
            flo->UseRealTime();
        }
    }
    TableReporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    printTable(reporter, figures);
    DropSharedSandbox();
    benchmark::Shutdown();
    return 0;
}
