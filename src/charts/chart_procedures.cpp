#include "chart_procedures.h"

#include "vote/forms.h"
#include "vote/not_built.h"
#include "vote/run_context.h"

namespace tallix {

void DisplayChart(RunContext& ctx, DisplayChartArgs args)
{
    if (ctx.chartProcedures)
        ctx.chartProcedures->DisplayChart(args);
    else
        NotBuiltYet(ctx, "Common_ChartDisplay", "DisplayChart");
}

void DisplayMultiChart(RunContext& ctx, short displayBy, short iterations, bool filterSet)
{
    if (ctx.chartProcedures)
        ctx.chartProcedures->DisplayMultiChart(displayBy, iterations, filterSet);
    else
        NotBuiltYet(ctx, "Common_ChartDisplay", "DisplayMultiChart");
}

void DisplayTick(RunContext& ctx)
{
    if (ctx.chartProcedures)
        ctx.chartProcedures->DisplayTick();
    else
        NotBuiltYet(ctx, "Common_ChartDisplay", "DisplayTick");
}

void DrawDynamicChart(RunContext& ctx)
{
    if (ctx.chartProcedures)
        ctx.chartProcedures->DrawDynamicChart();
    else
        NotBuiltYet(ctx, "CVote", "DrawDynamicChart");
}

void GrabBackground(RunContext& ctx, const char* formName)
{
    if (ctx.chartProcedures)
        ctx.chartProcedures->GrabBackground(formName);
    else
        NotBuiltYet(ctx, "Common_grabber", "GrabBackground");
}

void ShowLegend(RunContext& ctx)
{
    if (ctx.chartProcedures)
        ctx.chartProcedures->ShowLegend();
}

void GraphtoSlide(RunContext& ctx, short elements)
{
    if (ctx.FrmTChart)
        ctx.FrmTChart->GraphtoSlide(elements);
    else
        NotBuiltYet(ctx, "FrmTChart", "GraphtoSlide");
}

void DisplayRatingChart(RunContext& ctx, short itemIndex, short showNow, short sample, short filterSet, short rebuild)
{
    if (ctx.chartProcedures)
        ctx.chartProcedures->DisplayRatingChart(itemIndex, showNow, sample, filterSet, rebuild);
    else
        NotBuiltYet(ctx, "Common_ChartDisplay", "DisplayRatingChart");
}

void DisplayRatingDistribution(RunContext& ctx, short itemIndex)
{
    if (ctx.chartProcedures)
        ctx.chartProcedures->DisplayRatingDistribution(itemIndex);
    else
        NotBuiltYet(ctx, "Common_ChartDisplay", "DisplayRatingDistribution");
}

void showRankResultsAll(RunContext& ctx)
{
    if (ctx.chartProcedures)
        ctx.chartProcedures->ShowRankResultsAll();
    else
        NotBuiltYet(ctx, "Common_ChartDisplay", "showRankResultsAll");
}

void RefreshResult(RunContext& ctx)
{
    if (ctx.chartProcedures)
        ctx.chartProcedures->RefreshResult();
}

void HideRatingDistribution(RunContext& ctx)
{
    if (ctx.chartProcedures)
        ctx.chartProcedures->HideDistribution();
}

void DisplayWordCloud(RunContext& ctx, const QStringList& words, const QList<int>& counts, const QRectF& place)
{
    if (ctx.chartProcedures)
        ctx.chartProcedures->DisplayWordCloud(words, counts, place);
    else
        NotBuiltYet(ctx, "Common_ChartDisplay", "DisplayWordCloud");
}

} // namespace tallix
