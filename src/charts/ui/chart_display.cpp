#include "chart_display.h"

#include "charts/chart_colours.h"
#include "charts/collation.h"
#include "charts/ui/marks_and_ticks.h"
#include "foundation/format_float.h"
#include "chartwindow/ui/frm_tchart.h"
#include "chartwindow/ui/refresh_tchart.h"
#include "foundation/error_report.h"
#include "foundation/event_pump.h"
#include "foundation/logs.h"
#include "foundation/numbers.h"
#include "vote/run_context.h"

#include <cmath>

namespace tallix {

namespace {
const char* kModule = "Common_ChartDisplay";

template <class F>
void Step(RunContext& ctx, const char* procedure, F&& f)
{
    ChartStep(ctx, procedure, std::forward<F>(f));
}

bool IsVoteProgram(RunContext& ctx) { return ctx.app.exeName.compare(QLatin1String("vote"), Qt::CaseInsensitive) == 0; }

} // namespace

OleColor OptionColour(RunContext& ctx, int index) { return OleColor(ctx.optionColours(index)); }

void ApplyMarksFont(RunContext& ctx, TSeries& s)
{
    TFont& f = s.Marks.Font;
    f.Bold = ctx.Font.Bold.compare(QLatin1String("true"), Qt::CaseInsensitive) == 0 || ctx.Font.Bold == "-1" ||
             ctx.Font.Bold == "1";
    f.Italic = ctx.Font.Italic;
    if (!ctx.Font.Name.isEmpty())
        f.Name = ctx.Font.Name;
    f.Underline = ctx.Font.Underline;
    f.StrikeThrough = ctx.Font.StrikeThrough;
    if (ctx.Font.Size > 0)
        f.Size = ctx.Font.Size;
    f.Color = OleColor(ctx.Font.Colour);
    if (ctx.Font.ShadowVisible) {
        f.Shadow.Visible = true;
        f.Shadow.Color = OleColor(ctx.Font.ShadowColour);
        f.Shadow.HorizSize = 2;
        f.Shadow.VertSize = 2;
        f.Shadow.Transparency = 0;
    }
}
bool IsPieKind(short g) { return g == 0 || g == 1 || g == 13 || g == 14; }
bool IsVerticalBar(short g) { return g == 2 || g == 3 || g == 9 || g == 12; }
bool IsHorizontalBar(short g) { return g == 4 || g == 5 || g == 10 || g == 11; }

void SetGradientColour(RunContext& ctx, FrmTChart& form, int chartIndex, int seriesIndex)
{
    Step(ctx, "SetGradientColour", [&] {
        if (ctx.GraphOutline.FillStyle == 1)
            return;
        const short g = ctx.GraphType;
        TSeries& s = form.TChart(chartIndex).SERIES(g == 7 ? chartIndex : seriesIndex);
        auto gradient = [&](TGradient& gr) {
            gr.Visible = ctx.GradientColourShow;
            gr.StartColor = OleColor(ctx.GradientColour);
            gr.EndColor = OleColor(ctx.Font.Colour2);
            gr.Direction = ctx.GradientDirection;
        };
        if (IsPieKind(g)) {
            gradient(s.Gradient);
        } else if (g == 2 || g == 3) {
            s.asBar().BarStyle = ctx.GradientColourShow ? 6 : 0;
            gradient(s.Gradient);
        } else if (g == 4 || g == 5) {
            s.asHorizBar().BarStyle = ctx.GradientColourShow ? 6 : 0;
            gradient(s.Gradient);
        }
    });
}

void AddData(RunContext& ctx, FrmTChart& form, int chartIndex)
{
    Step(ctx, "AddData", [&] {
        ::tallix::TChart& chart = form.TChart(chartIndex);
        TSeries& s = chart.SERIES(chartIndex);
        const short g = ctx.GraphType;
        if (IsPieKind(g)) {
            chart.Aspect.Chart3DPercent = 50;
            for (int i = 0; i < ctx.optionCount; ++i) {
                const double n = ctx.optionCounts(i);
                const OleColor colour = OptionColour(ctx, OptionColourIndex(i));
                if (ctx.startFrom == 1) {
                    if (i == 0)
                        s.Add(0, QString(), clNone);
                    if (n > 0)
                        s.Add(n, ctx.Quilmark_Display == 1 ? QString(QChar(u'A' + i)) : QString::number(i + 1), colour);
                    else
                        s.Add(0, QString(), clNone);
                } else {
                    if (n > 0)
                        s.Add(n, QString::number(i), colour);
                    else
                        s.Add(0, QString(), clNone);
                }
            }
        } else {
            const bool paged = ctx.BarsPerPage >= 1 && ctx.BarSortOrder != 0;
            const int last = std::min<int>(ctx.optionCount - 1 + (paged ? ctx.startFrom : 0), ctx.optionCounts.ubound());
            for (int i = 0; i <= last; ++i) {
                if (paged) {
                    if (ctx.startFrom == 1 && i == 0) {
                        s.Add(0, QString(), clNone);
                        continue;
                    }
                    const double total = ctx.optionCounts(i - ctx.startFrom);
                    const OleColor colour = OptionColour(ctx, OptionColourIndex(i));
                    if (ctx.SeriesPercentVsTotalKpads && ctx.seriesVoterTotal > 0) {
                        const double p = total / ctx.seriesVoterTotal * 100.0;
                        const double f = std::pow(10.0, std::max(0.0, ctx.PercentDP));
                        s.Add(std::nearbyint(p * f) / f, QString(), colour);
                    } else {
                        s.Add(total, QString(), colour);
                    }
                } else if (ctx.SeriesPercentVsTotalKpads && ctx.seriesVoterTotal > 0) {
                    // The value is the share of voters; the label carries it as text.
                    const double p = ctx.optionCounts(i) / ctx.seriesVoterTotal * 100.0;
                    const double f = std::pow(10.0, std::max(0.0, ctx.PercentDP));
                    const double v = std::nearbyint(p * f) / f;
                    s.Add(v, QString::number(v) + QLatin1Char('%'), OptionColour(ctx, OptionColourIndex(i)));
                } else {
                    s.Add(ctx.optionCounts(i), QString(), OptionColour(ctx, OptionColourIndex(i)));
                }
            }
        }
        // A flat donut shows no empty slices; the 3D one keeps them as invisible points.
        if (g == 13) {
            for (int i = std::min<int>(ctx.optionCount, s.Count() - 1); i >= 0; --i)
                if (s.PointValue(i) == 0)
                    s.Delete(i);
        }
    });
}

void DynamicAxes(RunContext& ctx, FrmTChart& form, short useFixedMax, qint32 axisCeiling)
{
    Step(ctx, "DynamicAxes", [&] {
        const short g = ctx.GraphType;
        TAxis* axis = nullptr;
        if (g == 2 || g == 3 || g == 7 || g == 9 || g == 12)
            axis = &form.TChart(0).Axis.Left;
        else if (IsHorizontalBar(g))
            axis = &form.TChart(0).Axis.Bottom;
        if (!axis)
            return;
        if (useFixedMax) {
            axis->Automatic = false;
            axis->Maximum = axisCeiling;
            axis->Minimum = 0;
        } else {
            axis->Automatic = true;
        }
    });
}

void AdjustAxes(RunContext& ctx, FrmTChart& form, int chartIndex, short count)
{
    Step(ctx, "AdjustAxes", [&] {
        const short g = ctx.GraphType;
        if (g == 7 && count > 0)
            return;
        TAxis* axis = nullptr;
        bool automatic = false;
        if (IsVerticalBar(g))
            axis = &form.TChart(chartIndex).Axis.Bottom, automatic = true;
        else if (IsHorizontalBar(g))
            axis = &form.TChart(chartIndex).Axis.Left;
        else if (g == 7)
            axis = &form.TChart(chartIndex).Axis.Bottom;
        if (!axis)
            return;
        // Half a unit either side centres each bar on its whole-number position.
        axis->Automatic = automatic;
        axis->Maximum = ctx.optionCount + 0.5 - (1 - ctx.startFrom);
        axis->Minimum = ctx.startFrom - 0.5;
        axis->Increment = 1;
    });
}

void SetUpLegend(RunContext& ctx, FrmTChart& form, int chartIndex, int /*legendIndex*/, bool fromRecord)
{
    Step(ctx, "SetUpLegend", [&] {
        // Without a record the legend wears the marks' font.
        LegendRecord r;
        r.Name = ctx.Font.Name;
        r.Colour = ctx.Font.Colour;
        r.Size = ctx.Font.Size;
        r.Italic = ctx.Font.Italic;
        r.Underline = ctx.Font.Underline;
        r.StrikeThrough = ctx.Font.StrikeThrough;
        if (fromRecord && ctx.Legends.ubound() >= 0)
            r = ctx.Legends(0);
        TLegend& l = form.TChart(chartIndex).Legend;
        l.Alignment = r.Alignment;
        l.Symbol.DefaultPen = !r.HidePen;
        l.Transparent = true;
        l.Symbol.Squared = true;
        if (!r.Name.isEmpty())
            l.Font.Name = r.Name;
        l.Font.Color = OleColor(r.Colour);
        if (r.Size > 0)
            l.Font.Size = r.Size;
        l.Font.Bold = r.Bold;
        l.Font.Italic = r.Italic;
        l.Font.Underline = r.Underline;
        l.Font.StrikeThrough = r.StrikeThrough;
    });
}

bool LegendShown(const RunContext& ctx) { return ctx.Legends.ubound() >= 0 && ctx.Legends(0).Show > 0; }

void ShowLegend(RunContext& ctx, FrmTChart& form)
{
    Step(ctx, "ShowLegend", [&] {
        if (!LegendShown(ctx))
            return;
        // The surface takes the entries from the options, or from the series when there are several.
        form.TChart(0).Legend.Visible = true;
        SetUpLegend(ctx, form, 0, 0, true);
    });
}

QString FilterLegendText(QString title, bool orJoin)
{
    title.remove(QLatin1Char('^'));
    title = title.split(QLatin1Char('|')).join(orJoin ? QStringLiteral(" or ") : QStringLiteral(" and "));
    return title.isEmpty() ? QStringLiteral("All") : title;
}

void AdjustChartFont(TChart& chart, int chartIndex, float factor)
{
    auto scale = [&](TFont& f) { f.Size = int(std::lround(f.Size * factor)); };
    for (int s = 0; s < chart.SeriesCount(); ++s)
        scale(chart.SERIES(s).Marks.Font);
    if (chartIndex > 1) {
        scale(chart.Axis.Left.Labels.Font);
        scale(chart.Axis.Bottom.Labels.Font);
        scale(chart.Axis.Left.Title.Font);
        scale(chart.Axis.Bottom.Title.Font);
    }
    for (int i = 0; i < chart.Axis.Left.Labels.Count(); ++i)
        scale(chart.Axis.Left.Labels.Item(i).Font);
    for (int i = 0; i < chart.Axis.Bottom.Labels.Count(); ++i)
        scale(chart.Axis.Bottom.Labels.Item(i).Font);
}

void SetChartDimensions(RunContext& ctx, FrmTChart& form, int chartIndex)
{
    Step(ctx, "SetChartDimensions", [&] {
        if (chartIndex > ctx.ChartDimensions.ubound())
            return;
        const ChartDimension& d = ctx.ChartDimensions(chartIndex);
        if (d.MarginTop == 0 && d.MarginLeft == 0 && d.MarginBottom == 0 && d.MarginRight == 0 &&
            d.PositionLeft == 0 && d.PositionTop == 0)
            return;
        ::tallix::TChart& c = form.TChart(chartIndex);
        c.Panel.MarginBottom = d.MarginBottom;
        c.Panel.MarginLeft = d.MarginLeft;
        c.Panel.MarginRight = d.MarginRight;
        c.Panel.MarginTop = d.MarginTop;
        c.SetLeft(int(d.PositionLeft * kTwipsPerPixel));
        c.SetTop(int(d.PositionTop * kTwipsPerPixel));
    });
}

void ApplyChartFont(RunContext& ctx, TFont& f)
{
    if (!ctx.Font.Name.isEmpty())
        f.Name = ctx.Font.Name;
    if (ctx.Font.Size > 0)
        f.Size = ctx.Font.Size;
    f.Italic = ctx.Font.Italic;
    f.Color = OleColor(ctx.Font.Colour);
    f.Underline = ctx.Font.Underline;
    f.StrikeThrough = ctx.Font.StrikeThrough;
    f.Shadow.Color = OleColor(ctx.Font.ShadowColour);
    f.Shadow.Visible = ctx.Font.ShadowVisible;
    f.Shadow.Transparency = 0;
    f.Shadow.VertSize = ctx.Font.ShadowVisible ? 2 : 0;
    f.Shadow.HorizSize = ctx.Font.ShadowVisible ? 2 : 0;
}

void SetUpAxes(RunContext& ctx, FrmTChart& form, int chartIndex, int /*dataChart*/)
{
    Step(ctx, "SetUpAxes", [&] {
        ::tallix::TChart& c = form.TChart(chartIndex);
        const short g = ctx.GraphType;
        const bool horizontal = IsHorizontalBar(g);
        TAxis& valueAxis = horizontal ? c.Axis.Bottom : c.Axis.Left;
        TAxis& optionAxis = horizontal ? c.Axis.Left : c.Axis.Bottom;
        valueAxis.Inverted = ctx.InvertScale;
        for (TAxis* a : {&c.Axis.Bottom, &c.Axis.Left}) {
            // A few pixels inside both ends keep the outer bars and their marks in the panel.
            a->MinimumOffset = 4;
            a->MaximumOffset = 4;
            a->Visible = !IsPieKind(g);
            auto font = [&](TFont& f) { ApplyChartFont(ctx, f); };
            font(a->Labels.Font);
            for (int i = 0; i < a->Labels.Count(); ++i)
                font(a->Labels.Item(i).Font);
            a->Labels.Separation = 10;
        }
        optionAxis.Increment = 1;
        valueAxis.Increment = 0;
        // Points sit at 0, 1, 2...; the option axis names them by option number.
        if ((IsVerticalBar(g) || horizontal) && optionAxis.Labels.Count() == 0 && c.SeriesCount() > 0) {
            for (int i = 0; i < c.SERIES(0).Count(); ++i)
                optionAxis.Labels.Add(i, QString::number(i + ctx.startFrom));
        }
        c.Axis.Left.PositionPercent = 0;
        c.Axis.Left.ZPosition = 0;
        c.Axis.Left.AutomaticMaximum = true;
        c.Axis.Left.AutomaticMinimum = true;
    });
}

void StartAnimation(RunContext& ctx, FrmTChart& form, int chartIndex, int seriesIndex, short fast)
{
    form.setEnabled(false);
    Step(ctx, "StartAnimation", [&] {
        for (int i = 0; i < 251; ++i)
            ctx.pump->DoEvents();
        ::tallix::TChart& c = form.TChart(chartIndex);
        const bool pie = IsPieKind(ctx.GraphType);
        double factor = fast ? 10.0 : 1.0;
        if (pie)
            factor /= 2;
        c.Tools.Add(tkSeriesAnimation);
        TSeriesAnimationTool* tool = nullptr;
        for (int i = 0; i < c.Tools.Count() && !tool; ++i)
            if (c.Tools.Items(i).ToolType == tkSeriesAnimation)
                tool = &c.Tools.Items(i).asSeriesAnimation();
        if (!tool)
            return;
        tool->Series = seriesIndex;
        static const int kSteps[] = {0, 75, 50, 25, 10};
        if (ctx.GrowSpeed >= 1 && ctx.GrowSpeed <= 4)
            tool->Steps = int(factor * kSteps[ctx.GrowSpeed]);
        tool->StartAtMin = false;
        tool->DrawEvery = pie ? 1 : 0;
        form.animatingStepSize = short(255 / std::max(1, tool->Steps));
        tool->Execute();
    });
    form.setEnabled(true);
}

void SetPanelMargins(RunContext& ctx, ::tallix::TChart& chart)
{
    // In percent of the panel.
    const short g = ctx.GraphType;
    const bool vbar = IsVerticalBar(g);
    TPanel& pn = chart.Panel;
    pn.MarginTop = 4;
    if (g == 0 || g == 13) {
        pn.MarginRight = 3;
    } else if (g == 1 || g == 14) {
        pn.MarginRight = 10;
    } else if (g == 2 || g == 4) {
        pn.MarginRight = 10;
        pn.MarginBottom = 8;
        chart.Walls.Back.Visible = false;
    } else {
        pn.MarginRight = 20;
        pn.MarginBottom = 8;
    }
    if (vbar) {
        pn.MarginTop = 20;
        pn.MarginRight = 10;
    }
    if (ctx.vType == 4)
        pn.MarginTop = vbar ? 20 : 4;
}

int AddGraphSeries(RunContext& ctx, ::tallix::TChart& chart, int c, bool rebuild, short g)
{
    const bool pie = IsPieKind(g), vbar = IsVerticalBar(g), hbar = IsHorizontalBar(g);
    const int widthBound = ctx.BarSpacing.ubound();
    const int depthBound = ctx.BarDepth.ubound();
    int added = -1;
    chart.Aspect.Orthogonal = true;
    const GraphOutlineSettings& o = ctx.GraphOutline;
    if (g == 13 || g == 14) {
        TSeries& d = chart.SERIES(added = chart.AddSeries(scDonut)).asDonut();
        d.PiePen.Visible = o.Visible;
        d.PiePen.Color = OleColor(o.Colour);
        d.Circled = true;
        chart.Aspect.Elevation = ctx.AspectRatio ? ctx.AspectRatio : chart.Aspect.Elevation;
    } else if (hbar || vbar) {
        TSeries& b = chart.SERIES(added = chart.AddSeries(hbar ? scHorizBar : scBar));
        b.BarPen.Visible = false;
        b.AutoMarkPosition = false;
        b.BarPen.Visible = o.Visible;
        b.BarPen.Color = OleColor(o.Colour);
        b.AutoBarSize = true;
        b.BarBrush.Style = o.FillStyle;
        if (o.FillStyle == 1)
            b.BarPen.Color = OleColor(o.Colour);
        if (hbar) {
            if (!rebuild && c <= widthBound && ctx.BarSpacing(c) > 0) {
                b.AutoBarSize = false;
                b.BarHeight = int(ctx.BarSpacing(c));
            }
        } else if (!rebuild && c <= widthBound && ctx.BarSpacing(c) >= 0) {
            b.AutoBarSize = false;
            b.BarWidth = int(ctx.BarSpacing(c));
        }
        if (c <= depthBound)
            b.DepthPercent = ctx.BarDepth(c);
        if (g == 10 || g == 9)
            b.BarStyle = 3;
        else if (g == 11 || g == 12)
            b.BarStyle = 1;
    } else if (pie) {
        TSeries& p = chart.SERIES(added = chart.AddSeries(scPie)).asPie();
        p.PiePen.Visible = o.Visible;
        p.PiePen.Color = OleColor(o.Colour);
        p.Circled = true;
        chart.Aspect.Elevation = ctx.AspectRatio ? ctx.AspectRatio : chart.Aspect.Elevation;
    }
    chart.Aspect.Chart3DPercent = g == 10 ? 30 : 40;
    return added;
}

void DisplayChart(RunContext& ctx, FrmTChart& form, DisplayChartArgs& a)
{
    const char* P = "DisplayChart";
    const qint64 t0 = ctx.clock->perfCounter();
    const short g = ctx.GraphType;
    const bool pie = IsPieKind(g), vbar = IsVerticalBar(g), hbar = IsHorizontalBar(g);

    Step(ctx, P, [&] {
        if (a.seriesCount == 1)
            CollateVotes(ctx, a.filterSet, a.sample, a.keepCounts);
        else if (a.seriesCount > 1)
            CollateSeriesVotes(ctx, a.filterSet, a.sample);
    });
    if (!a.rebuild)
        form.Fade(0, 0);
    if (!(a.rebuild > 0 || a.hidden > 0))
        form.hide();
    Step(ctx, P, [&] {
        form.TChart(0).RemoveAllSeries();
        if (a.withMultiChart) {
            if (form.TChart.Count() < 2 && !form.TChart.Exists(1))
                form.TChart.Load(1);
            form.TChart(1).RemoveAllSeries();
        }
    });
    if (IsVoteProgram(ctx)) {
        const int cvt = int(tlxVal(ctx.controllerVoteType));
        if (!ctx.controllerVoteType.isEmpty() && (cvt == 6 || cvt == 3))
            a.seriesCount = 1;
    }
    if (!a.rebuild) {
        Step(ctx, P, [&] {
            for (int c = 0; c < std::min<int>(a.seriesCount, 2); ++c)
                if (form.TChart.Exists(c))
                    form.TChart(c).Move(0, 0, form.width() * kTwipsPerPixel, form.height() * kTwipsPerPixel);
        });
        if (!a.hidden)
            RefreshTChart(ctx, form, a.sample, 0, 0, 0);
    }
    const int lastElement = a.withMultiChart ? 1 : 0;
    const int seriesLoop = std::max<int>(a.seriesCount, 1);

    for (int c = 0; c <= lastElement; ++c) {
        Step(ctx, P, [&] {
            ::tallix::TChart& chart = form.TChart(c);
            chart.Zoom.Enable = false;
            chart.Scroll.Enable = 0;
            for (int s = 0; s < seriesLoop; ++s) {
                Step(ctx, P, [&] {
                    AddGraphSeries(ctx, chart, c, a.rebuild != 0, g);
                    if (pie)
                        chart.SERIES(s).Circled = true;
                });
                SetGradientColour(ctx, form, c, s);
                if (c == 1)
                    break;
            }
        });
    }

    AddData(ctx, form, 0);
    Step(ctx, P, [&] { form.TChart(0).SERIES(0).Color = OptionColour(ctx, 0); });

    for (int c = 0; c <= lastElement; ++c) {
        bool toAbstain = false;
        Step(ctx, P, [&] {
            ::tallix::TChart& chart = form.TChart(c);
            if (c == 1 && form.TChart.Count() == 2) {
                for (int t = 0; t <= ctx.seriesCounts.ubound1() && t < chart.SeriesCount(); ++t) {
                    for (int i = 0; i < ctx.optionCount && i <= ctx.seriesCounts.ubound2(); ++i) {
                        if (ctx.startFrom == 1 && i == 0)
                            chart.SERIES(t).Add(0, QString(), clNone);
                        // The totals are weighted already; the second weighting is kept on purpose.
                        double w = 1;
                        if (t <= ctx.SeriesWeighting.ubound() && tlxVal(QString::number(ctx.SeriesWeighting(t))) > 0)
                            w = ctx.SeriesWeighting(t);
                        chart.SERIES(t).Add(ctx.seriesCounts(t, i) * w, QString(), OptionColour(ctx, t));
                    }
                }
            }
            if (a.dynamic > 0 && a.filterSet <= 0 && a.rebuild <= 0 && a.hidden <= 0)
                DynamicAxes(ctx, form, 0, 0);
            for (int s = 0; s < chart.SeriesCount(); ++s) {
                Step(ctx, P, [&] {
                    TSeries& series = chart.SERIES(s);
                    if (g == 0 || g == 2 || g == 4 || g == 13)
                        chart.Aspect.View3D = false;
                    else
                        chart.Aspect.View3D = true;
                    series.Marks.Transparent = true;
                    ApplyMarksFont(ctx, series);
                    // Beside a legend the marks take the first option's colour.
                    if (LegendShown(ctx))
                        series.Marks.Font.Color = OleColor(ctx.optionColours(0));
                    if (pie) {
                        series.Marks.Arrow.Visible = false;
                        if (g == 13 || g == 14)
                            series.Shadow.Visible = false;
                        if (ctx.showAsPercentOrNumber != 3)
                            for (int i = 0; i < series.Count(); ++i)
                                if (!series.PointLabel(i).isEmpty())
                                    series.PointLabel(i) = series.PointLabel(i) + QStringLiteral(") ");
                        if (ctx.showAsPercentOrNumber == 1)
                            series.Marks.Style = 4;
                        else if (ctx.showAsPercentOrNumber == 3)
                            series.Marks.Visible = false;
                        else
                            series.Marks.Style = 3;
                        series.Marks.ArrowLength = ctx.ArrowLength;
                        series.PercentFormat = GetPercentFormatString(ctx);
                    } else {
                        const short sap = ctx.showAsPercentOrNumber;
                        if (sap == 1 || sap == 2) {
                            const QChar dec = NumberMarkDecimal();
                            const QChar th = NumberMarkThousands();
                            for (int i = 0; i < series.Count(); ++i) {
                                const double v = series.PointValue(i);
                                QString text = FormatFloat(NumberFormatFor(v), v, dec, th);
                                if (sap == 2 && ctx.showAsBothStackedOrSide == 1)
                                    text += QStringLiteral(" /");
                                series.PointLabel(i) = text;
                            }
                        }
                        series.Marks.ArrowLength = 20;
                        series.Marks.Arrow.Visible = false;
                        series.PercentFormat = GetPercentFormatString(ctx);
                        if (sap == 0)
                            series.Marks.Style = 1;
                        else if (sap == 1)
                            series.Marks.Style = 2;
                        else if (sap == 2) {
                            series.Marks.Style = 3;
                            series.Marks.MultiLine = !ctx.showAsBothStackedOrSide;
                        } else if (sap == 3)
                            series.Marks.Visible = false;
                        if (ctx.SeriesPercentVsTotalKpads)
                            series.Marks.Style = 2;
                    }
                    SetPanelMargins(ctx, chart);
                    if (!a.rebuild)
                        SetChartDimensions(ctx, form, s);
                    if (vbar || hbar)
                        series.AutoMarkPosition = false;
                    if (g == 0 || g == 1 || g == 14) {
                        // A pie sizes itself when painted; its radii are fixed from this first paint.
                        if (!a.hidden)
                            form.show();
                        if (!a.rebuild)
                            chart.SetVisible(true);
                        for (int i = 0; i < 250; ++i)
                            ctx.pump->DoEvents();
                        chart.Repaint();
                        form.pieXRadius = series.XRadius;
                        form.pieYRadius = series.YRadius;
                        chart.SetVisible(false);
                    }
                    if (a.hidden <= 0 && a.dynamic <= 0 && ctx.vType == 2 && ctx.DisplayBy == 1 && c == 0) {
                        chart.SetVisible(false);
                        if (s == 0)
                            for (int k = 0; k < a.seriesCount; ++k)
                                chart.AddSeries(scBar);
                        chart.RemoveSeries(chart.SeriesCount() - 1);
                        for (int k = s; k < a.seriesCount && k < chart.SeriesCount(); ++k)
                            if (k != s)
                                chart.SERIES(k).Active = false;
                        chart.SetVisible(true);
                        series.Active = true;
                    }
                    if (pie) {
                        series.Marks.Visible = ctx.showAsPercentOrNumber != 3;
                        if (ctx.BarSortOrder == 1 || ctx.BarSortOrder == 2)
                            series.SortByLabels(ctx.BarSortOrder);
                        chart.Page.MaxPointsPerPage = 99;
                    } else if (ctx.optionCount > ctx.BarsPerPage && ctx.BarsPerPage > 0) {
                        chart.Page.MaxPointsPerPage = ctx.BarsPerPage;
                        chart.Page.ScaleLastPage = true;
                        chart.Page.Current = 1;
                        if (hbar) {
                            series.XValues.Order = ctx.BarSortOrder;
                            series.XValues.Sort();
                            series.YValues.FillSequence();
                            chart.Axis.Left.AutomaticMinimum = true;
                            chart.Axis.Left.AutomaticMaximum = true;
                        } else {
                            series.YValues.Order = ctx.BarSortOrder;
                            series.YValues.Sort();
                            series.XValues.FillSequence();
                            chart.Axis.Bottom.AutomaticMinimum = true;
                            chart.Axis.Bottom.AutomaticMaximum = true;
                        }
                        for (int i = ctx.startFrom; i <= ctx.BarsPerPage && ctx.optionCount > 0; ++i) {
                            if (i > ctx.optionCount || i >= series.Count())
                                break;
                            series.PointColor(i) = OptionColour(ctx, OptionColourIndex(i));
                        }
                        if (ctx.BarSortOrder == 1 || ctx.BarSortOrder == 2)
                            series.SortByLabels(ctx.BarSortOrder);
                        chart.Axis.Bottom.Labels.Clear();
                        chart.Axis.Left.Labels.Clear();
                        for (int i = 0; i < series.Count(); ++i) {
                            const QString text = QString::number(i + ctx.startFrom);
                            chart.Axis.Bottom.Labels.Add(i, text);
                            chart.Axis.Left.Labels.Add(i, text);
                        }
                        chart.Repaint();
                    } else {
                        chart.Page.MaxPointsPerPage = 99;
                    }
                });
                if (c == 1)
                    break;
            }
        });
        SetUpAxes(ctx, form, c, 0);
        if (a.hidden && ctx.haveTick >= 1) {
            DisplayTick(ctx);
            form.hide();
        }
        if (!a.hidden)
            RefreshTChart(ctx, form, a.sample, 0, 0, 0);
        if (a.rebuild > 0 || a.hidden > 0) {
            if (c == 0 && a.rebuild == 0)
                form.TChart(0).SetVisible(true);
            toAbstain = true;
        } else {
            Step(ctx, P, [&] {
                if (!form.TChart(c).Visible())
                    form.TChart(c).SetVisible(true);
            });
            if (a.rebuild == 0 && ctx.GraphPlotting != 0 && c == 0) {
                Step(ctx, P, [&] {
                    ::tallix::TChart& chart = form.TChart(0);
                    // Only the pies measured before they grow have radii to keep; a flat donut
                    // is never measured, sizes itself, and so must stay circled.
                    const bool measured = pie && form.pieXRadius > 0 && form.pieYRadius > 0;
                    if (pie)
                        chart.SERIES(0).Marks.Visible = false;
                    if (measured) {
                        chart.SERIES(0).XRadius = form.pieXRadius;
                        chart.SERIES(0).YRadius = form.pieYRadius;
                    }
                    form.Fade(0, 1);
                    form.animating = true;
                    form.animatingCounter = 0;
                    StartAnimation(ctx, form, 0, 0, 0);
                    form.animating = false;
                    form.Fade(255, 255);
                    chart.SERIES(0).Marks.Visible = ctx.showAsPercentOrNumber != 3;
                    if (pie) {
                        chart.SERIES(0).Circled = !measured;
                        chart.SERIES(0).AutoMarkPosition = false;
                    }
                });
                toAbstain = true;
            } else if (ctx.vType != 2 && a.fadeIn && ctx.app.exeName.toUpper() != QLatin1String("VOTE")) {
                form.Fade(0, 255);
            }
        }
        if (toAbstain)
            break;
    }

    Step(ctx, P, [&] {
        if (ctx.allowAbstain && ctx.arg1.toUpper() == QLatin1String("TLXVOTE") &&
            ctx.app.exeName != QLatin1String("columns")) {
            int counted = 0;   // counted for no other use, as before
            for (const QString& v : ctx.votes)
                counted += v == QLatin1String("-2");
            (void)counted;
            ::tallix::TChart& chart = form.TChart(0);
            chart.Tools.Add(tkAnnotation);
            TAnnotationTool& t = chart.Tools.Items(chart.Tools.Count() - 1).asAnnotation();
            // The weighted total, not the counted one.
            t.Text = QStringLiteral("Abstain Count = ") + QString::number(ctx.abstainTotal);
            t.Shape.Font.Size = 16;
            t.Position = 3;
            t.Shape.Shadow.Visible = false;
            t.Shape.Color = 16777215;
            chart.Repaint();
        }
    });

    // A reshown chart names its question and the answers its filter keeps.
    if (!ctx.chartTitle.isEmpty())
        Step(ctx, P, [&] {
            form.TChart(0).Header.Visible = true;
            SetChartTitle(ctx, form.TChart(0), ctx.reshowTitle, ctx.chartTitle);
        });

    if (a.rebuild == 0 && a.withMultiChart) {
        Step(ctx, P, [&] {
            auto vis = [&](int i, bool on) {
                if (form.TChart.Exists(i))
                    form.TChart(i).SetVisible(on);
            };
            switch (ctx.DisplayBy) {
            case 0:
                vis(0, false);
                DisplayMultiChart(ctx, ctx.DisplayBy, ctx.Iterations, false);
                vis(0, true), vis(1, false), vis(2, false);
                break;
            case 1:
                DisplayMultiChart(ctx, ctx.DisplayBy, ctx.Iterations, false);
                vis(0, false), vis(1, true), vis(2, false);
                break;
            case 2:
                DisplayMultiChart(ctx, ctx.DisplayBy, ctx.Iterations, false);
                vis(0, false), vis(1, false), vis(2, true);
                break;
            default:
                break;
            }
        });
    }
    WriteDebugLog(ctx, float(CounterSeconds(ctx, t0, ctx.clock->perfCounter())), QStringLiteral("DisplayChart"),
                  kModule, P);
}

} // namespace tallix
