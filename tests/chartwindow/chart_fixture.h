#pragma once
// A vote's run context over a one-slide deck in memory, with the show on a 960x540
// screen and the chart area in the slide's middle, ready for a chart to be drawn.

#include "chartwindow/ui/chart_window.h"
#include "chartwindow/ui/frm_tchart.h"
#include "host/deck_host.h"
#include "question/common_xml.h"
#include "question/settings_document.h"
#include "support/test_context.h"

#include <QVector>

namespace tallix::testing {

struct ChartRun {
    TestRun run;
    RunContext& ctx = run.ctx;
    std::unique_ptr<host::MemoryHost> deck;
    std::unique_ptr<ChartWindowProcedures> charts;
    int commits = 0;

    ChartRun()
    {
        host::HostConfig cfg;
        cfg.showRunning = true;
        cfg.showWindowRect = QRect(0, 0, 960, 540);
        deck = std::make_unique<host::MemoryHost>(1, cfg);
        ctx.oPPT = deck.get();
        ctx.oPres = deck->ActivePresentation();
        ctx.currentSlide = 1;
        ctx.arg1 = QStringLiteral("TLXVOTE");
        ctx.ShowGraphs = true;
        ctx.GraphPlotting = 0;
        ctx.startFrom = 1;
        ctx.Font.Size = 14;
        ctx.Font.Name = QStringLiteral("DejaVu Sans");
        ctx.optionColours.redim(10);
        const qint32 palette[] = {0x404040, 0x3C14DC, 0x2E8B22, 0xD97826, 0x00A5FF, 0x8B3D48,
                                  0x7A96E9, 0x578B2E, 0xB48246, 0x8515C7, 0x9AFA00};
        for (int i = 0; i <= 10; ++i)
            ctx.optionColours(i) = palette[i];
        ctx.vArea.redim(0);
        ctx.vArea(0).Left = 0.1f;
        ctx.vArea(0).Top = 0.2f;
        ctx.vArea(0).Width = 0.6f;
        ctx.vArea(0).Height = 0.7f;
        ctx.CommitPresentation = [this] { ++commits; };
        settingsDocOf(ctx).loadXML(QStringLiteral("<tlxfile><BarColours></BarColours><Font></Font></tlxfile>"));
        charts = InstallChartWindow(ctx);
    }

    void setCounts(short graphType, const QVector<double>& counts)
    {
        ctx.GraphType = graphType;
        ctx.optionCount = short(counts.size());
        ctx.optionCounts.redim(counts.size());
        for (int i = 0; i < counts.size(); ++i)
            ctx.optionCounts(i) = counts[i];
    }

    // Draws the chart from the totals as they stand (no collation).
    FrmTChart& display(DisplayChartArgs args = {})
    {
        args.seriesCount = 0;
        DisplayChart(ctx, args);
        return *charts->form();
    }

    host::Shapes* shapes() { return deck->ActivePresentation()->GetSlides()->Item(1)->GetShapes(); }
    QStringList shapeNames()
    {
        QStringList out;
        for (int i = 1; i <= shapes()->Count(); ++i)
            out << shapes()->Item(i)->Name();
        return out;
    }
};

} // namespace tallix::testing
