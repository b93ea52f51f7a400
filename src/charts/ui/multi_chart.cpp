#include "multi_chart.h"

#include "charts/chart_colours.h"
#include "charts/collation.h"
#include "charts/ui/chart_display.h"
#include "chartwindow/ui/frm_tchart.h"
#include "chartwindow/ui/refresh_tchart.h"
#include "foundation/clock.h"
#include "foundation/error_report.h"
#include "foundation/format_float.h"
#include "foundation/logs.h"
#include "foundation/numbers.h"
#include "vote/run_context.h"

#include <cmath>

namespace tallix {

namespace {

const char* kModule = "Common_ChartDisplay";
const char* kProc = "DisplayMultiChart";

// Each element's statements go on after a failure, as the standard chart's do.
template <class F>
void Step(RunContext& ctx, F&& f)
{
    ChartStep(ctx, kProc, std::forward<F>(f));
}

double percentOf(const RunContext& ctx, double part, double whole)
{
    if (whole == 0)
        return 0;
    const double f = std::pow(10.0, std::max(0.0, ctx.PercentDP));
    return std::nearbyint(part / whole * 100.0 * f) / f;
}

QString optionLabel(const RunContext& ctx, int option)
{
    return ctx.Quilmark_Display == 1 ? QString(QChar(u'A' + option)) : QString::number(option + ctx.startFrom);
}

QString selectionTitle(const RunContext& ctx, int selection)
{
    const QString word = ctx.seriesvoteIterationText.trimmed();
    return word.isEmpty() ? QStringLiteral("Selection %1").arg(selection) : QString::number(selection) + ' ' + word;
}

// Selections side by side need bars, whatever the totals are drawn as.
short elementKind(short graphType, int element)
{
    if (element != 1 || !IsPieKind(graphType))
        return graphType;
    return graphType == 0 || graphType == 13 ? 2 : 3;
}

bool onView(short displayBy, int element)
{
    switch (displayBy) {
    case 1: return element == 1;
    case 2: return element >= 2;
    default: return element == 0;
    }
}

// Elements 0 and 1 take the whole window; the selections share it, side by side or,
// for horizontal bars, one above the other.
void layOut(FrmTChart& form, int selections, bool stacked)
{
    const int w = form.width(), h = form.height();
    for (int c = 0; c < 2 + selections; ++c)
        if (!form.TChart.Exists(c))
            form.TChart.Load(c);
    // Elements of an earlier, longer series would be exported with this one.
    for (int c = form.TChart.UBound(); c >= 2 + selections; --c)
        if (form.TChart.Exists(c))
            form.TChart.Unload(c);
    for (int c = 0; c < 2; ++c) {
        form.TChart(c).Move(0, 0, w * kTwipsPerPixel, h * kTwipsPerPixel);
        form.TChart(c).SetVisible(false);
        form.TChart(c).RemoveAllSeries();
    }
    for (int t = 0; t < selections; ++t) {
        const QRect r = stacked ? QRect(0, t * h / selections, w, (t + 1) * h / selections - t * h / selections)
                                : QRect(t * w / selections, 0, (t + 1) * w / selections - t * w / selections, h);
        form.TChart(2 + t).Move(r.x() * kTwipsPerPixel, r.y() * kTwipsPerPixel, r.width() * kTwipsPerPixel,
                                r.height() * kTwipsPerPixel);
    }
}

QString markLabel(const RunContext& ctx, double value)
{
    if (ctx.SeriesPercentVsTotalKpads)
        return QString::number(value) + QLatin1Char('%');
    if (ctx.showAsPercentOrNumber != 2)
        return {};
    QString text = FormatFloat(NumberFormatFor(value), value, NumberMarkDecimal(), NumberMarkThousands());
    if (ctx.showAsBothStackedOrSide == 1)
        text += QStringLiteral(" /");
    return text;
}

void addPoints(RunContext& ctx, TChart& chart, const SelectionTotals& totals, int element)
{
    const bool pie = IsPieKind(elementKind(ctx.GraphType, element));
    for (int s = 0; s < chart.SeriesCount(); ++s) {
        TSeries& series = chart.SERIES(s);
        if (ctx.startFrom == 1 && ctx.vType != 2)
            series.Add(0, QString(), clNone);
        for (int i = 0; i < ctx.optionCount; ++i) {
            const double v = MultiChartPointValue(ctx, totals, element, s, i);
            const OleColor colour = element == 1 ? OleColor(ctx.seriesColours(s % (ctx.seriesColours.ubound() + 1)))
                                                 : OptionColour(ctx, OptionColourIndex(i));
            if (!pie)
                series.Add(v, markLabel(ctx, v), colour);
            else if (v > 0)
                series.Add(v, optionLabel(ctx, i), colour);
            else
                series.Add(0, QString(), clNone);   // an empty slice draws no label
        }
        if (element == 1) {
            series.Color = OleColor(ctx.seriesColours(s % (ctx.seriesColours.ubound() + 1)));
            series.Title = selectionTitle(ctx, s + 1);
        }
    }
}

void setMarks(RunContext& ctx, TSeries& series)
{
    series.Marks.Transparent = true;
    series.Marks.ArrowLength = 20;
    series.Marks.Arrow.Visible = false;
    series.PercentFormat = GetPercentFormatString(ctx);
    ApplyMarksFont(ctx, series);
    switch (ctx.showAsPercentOrNumber) {
    case 0: series.Marks.Style = 1; break;
    case 1: series.Marks.Style = 0; break;
    case 2:
        series.Marks.Style = 3;
        series.Marks.MultiLine = !ctx.showAsBothStackedOrSide;
        break;
    case 3: series.Marks.Visible = false; break;
    default: break;
    }
    if (ctx.SeriesPercentVsTotalKpads)
        series.Marks.Style = 2;
}

void setTitles(RunContext& ctx, TChart& chart, int element, short kind)
{
    if (element == 1)
        return;
    TAxis& valueAxis = IsHorizontalBar(kind) ? chart.Axis.Bottom : chart.Axis.Left;
    if (element == 0) {
        valueAxis.Title.Caption = ctx.SeriesPercentVsTotalKpads ? QStringLiteral("Percent of all keypads") : QString();
        return;
    }
    const QString title = selectionTitle(ctx, element - 1);
    if (IsPieKind(kind)) {
        // A pie has no axes to carry its title.
        chart.Header.Text = QStringList{title};
        ApplyChartFont(ctx, chart.Header.Font);
        return;
    }
    chart.Axis.Left.Title.Caption = title;
    chart.Axis.Left.Title.Angle = 90;
    ApplyChartFont(ctx, chart.Axis.Left.Title.Font);
}

void setAxisLabels(RunContext& ctx, TChart& chart, int element, short kind)
{
    chart.Axis.Bottom.Labels.Clear();
    chart.Axis.Left.Labels.Clear();
    TAxis& optionAxis = IsHorizontalBar(kind) ? chart.Axis.Left : chart.Axis.Bottom;
    const int blank = ctx.startFrom == 1 && ctx.vType != 2 ? 1 : 0;
    if (chart.SeriesCount() > 0)
        for (int p = blank; p < chart.SERIES(0).Count(); ++p)
            optionAxis.Labels.Add(p, optionLabel(ctx, p - blank));
    chart.Aspect.Chart3DPercent = element >= 2 ? 25 : 40;
}

// One scale for the selection elements, with room above the bars for their marks. With no
// answers at all there is no scale to fix.
void fixSelectionScale(RunContext& ctx, TChart& chart, const SelectionTotals& totals, short kind)
{
    if (IsPieKind(kind) || totals.highestCount <= 0)
        return;
    const double highest = ctx.SeriesPercentVsTotalKpads ? percentOf(ctx, totals.highestCount, ctx.seriesVoterTotal)
                                                         : double(totals.highestCount);
    if (highest <= 0)
        return;
    TAxis& valueAxis = IsHorizontalBar(kind) ? chart.Axis.Bottom : chart.Axis.Left;
    valueAxis.Automatic = false;
    valueAxis.AutomaticMinimum = false;
    valueAxis.AutomaticMaximum = false;
    valueAxis.Minimum = 0;
    valueAxis.Maximum = highest * 1.5;
}

void buildElement(RunContext& ctx, FrmTChart& form, int c, const SelectionTotals& totals, int selections,
                  const MultiChartArgs& a)
{
    const short kind = elementKind(ctx.GraphType, c);
    TChart& chart = form.TChart(c);
    Step(ctx, [&] {
        chart.Zoom.Enable = false;
        chart.Scroll.Enable = 0;
        chart.RemoveAllSeries();
        chart.Legend.Visible = false;
        chart.Header.Text.clear();
    });
    Step(ctx, [&] {
        for (int s = 0; s < (c == 1 ? selections : 1); ++s) {
            const int index = AddGraphSeries(ctx, chart, c, a.rebuild != 0, kind);
            SetGradientColour(ctx, form, c, index);
        }
        chart.Aspect.View3D = !(kind == 0 || kind == 2 || kind == 4 || kind == 13);
    });
    Step(ctx, [&] { SetPanelMargins(ctx, chart); });
    Step(ctx, [&] { setTitles(ctx, chart, c, kind); });
    Step(ctx, [&] { addPoints(ctx, chart, totals, c); });
    Step(ctx, [&] {
        for (int s = 0; s < chart.SeriesCount(); ++s)
            setMarks(ctx, chart.SERIES(s));
        if (c == 1) {
            // Which colour is which selection.
            chart.Legend.Visible = true;
            SetUpLegend(ctx, form, 1, 0, false);
        }
    });
    Step(ctx, [&] { setAxisLabels(ctx, chart, c, kind); });
    SetChartDimensions(ctx, form, c);
    Step(ctx, [&] {
        if (IsPieKind(kind) && (ctx.BarSortOrder == 1 || ctx.BarSortOrder == 2))
            chart.SERIES(0).SortByLabels(ctx.BarSortOrder);
        chart.Page.MaxPointsPerPage = 99;   // a series never pages
    });
    SetUpAxes(ctx, form, c, 0);
    if (c == 1 && IsPieKind(ctx.GraphType))
        Step(ctx, [&] { chart.Axis.Left.Visible = chart.Axis.Bottom.Visible = true; });
    if (ctx.startFrom == 1 && ctx.vType != 2)
        AdjustAxes(ctx, form, c, 0);
    // The small selection charts take 60% of the font; the selections side by side fill the
    // window, and their option numbers would shrink while the scale's did not.
    if (c >= 2)
        Step(ctx, [&] { AdjustChartFont(chart, c, 0.6f); });
    if (c >= 2)
        Step(ctx, [&] { fixSelectionScale(ctx, chart, totals, kind); });
}

void animate(RunContext& ctx, FrmTChart& form, short displayBy, int selections)
{
    form.Fade(0, 1);
    form.animating = true;
    form.animatingCounter = 0;
    if (displayBy == 1) {
        for (int s = 0; form.TChart.Exists(1) && s < form.TChart(1).SeriesCount(); ++s)
            StartAnimation(ctx, form, 1, s, 0);
    } else if (displayBy == 2) {
        for (int t = 0; t < selections; ++t)
            StartAnimation(ctx, form, 2 + t, 0, 1);
    } else {
        StartAnimation(ctx, form, 0, 0, 0);
    }
    form.animating = false;
    form.Fade(255, 255);
}

} // namespace

SelectionTotals TotalSelections(const RunContext& ctx)
{
    SelectionTotals totals;
    double highest = 0;
    for (int t = 0; t < ctx.Iterations; ++t) {
        double sum = 0;
        for (int i = 0; i < ctx.optionCount; ++i) {
            if (t > ctx.seriesCounts.ubound1() || i > ctx.seriesCounts.ubound2())
                continue;
            const double n = ctx.seriesCounts(t, i);
            sum += n;
            highest = std::max(highest, n);
        }
        totals.iterationTotals << float(sum);
    }
    totals.highestCount = qint32(std::lround(highest));
    return totals;
}

double MultiChartPointValue(const RunContext& ctx, const SelectionTotals& totals, int element, int selection,
                            int option)
{
    auto selectionCount = [&](int t) {
        return t >= 0 && t <= ctx.seriesCounts.ubound1() && option <= ctx.seriesCounts.ubound2()
                   ? ctx.seriesCounts(t, option)
                   : 0.0;
    };
    if (element == 1) {
        const double n = selectionCount(selection);
        if (ctx.showAsPercentOrNumber == 1)
            return n;
        // A selection's percent is of its own answers; one with none is all zeros.
        const double total = selection < totals.iterationTotals.size() ? totals.iterationTotals[selection] : 0.0;
        return total != 0 && n != 0 ? n / total * 100.0 : 0.0;
    }
    const double n = element == 0 ? (option <= ctx.optionCounts.ubound() ? ctx.optionCounts(option) : 0.0)
                                  : selectionCount(element - 2);
    return ctx.SeriesPercentVsTotalKpads ? percentOf(ctx, n, ctx.seriesVoterTotal) : n;
}

void DisplayMultiChart(RunContext& ctx, FrmTChart& form, short& displayBy, short& iterations, MultiChartArgs& a)
{
    const qint64 t0 = ctx.clock->perfCounter();
    const int selections = std::max<int>(iterations, 0);
    if (!a.rebuild)
        form.Fade(0, 0);
    if (!(a.rebuild || a.hidden))
        form.hide();
    if (!a.rebuild)
        Step(ctx, [&] { layOut(form, selections, IsHorizontalBar(ctx.GraphType)); });
    Step(ctx, [&] { CollateSeriesVotes(ctx, a.filterSet, a.sample); });
    const SelectionTotals totals = TotalSelections(ctx);
    for (int c = 0; c < 2 + selections; ++c)
        if (form.TChart.Exists(c))
            buildElement(ctx, form, c, totals, selections, a);

    Step(ctx, [&] {
        for (int c = 0; c < 2 + selections; ++c)
            if (form.TChart.Exists(c))
                form.TChart(c).SetVisible(onView(displayBy, c));
    });
    if (!a.hidden) {
        RefreshTChart(ctx, form, a.sample, 0, 0, 0);
        if (!a.rebuild && ctx.GraphPlotting != 0)
            Step(ctx, [&] { animate(ctx, form, displayBy, selections); });
        form.ShowMe();
    }
    WriteDebugLog(ctx, float(CounterSeconds(ctx, t0, ctx.clock->perfCounter())), QStringLiteral("DisplayMultiChart"),
                  kModule, kProc);
}

} // namespace tallix
