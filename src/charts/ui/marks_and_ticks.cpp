#include "marks_and_ticks.h"

#include "charts/ui/chart_display.h"
#include "chartwindow/ui/frm_tchart.h"
#include "foundation/error_report.h"
#include "foundation/event_pump.h"
#include "foundation/numbers.h"
#include "vote/run_context.h"

#include <QPointF>
#include <QStringList>

#include <cmath>

namespace tallix {

namespace {
const char* kModule = "Common_ChartDisplay";

// Kept on the form, so a run measures the glyph once and a new result window measures again.
const char* kGlyphHeightProperty = "tallixTickGlyphHeight";

// The Wingdings tick; the surface maps it to a check mark where Wingdings is not installed.
const QString kTickGlyph = QString(QChar(0xFC));

// 50 steps of 2 take a margin in percent past the whole chart: a mark that does not fit by then
// never will.
constexpr int kMaxMarginSteps = 50;

// A chart routine reports a failed statement under its own name and goes on with the next,
// so a bad setting leaves a partly finished chart rather than none.
template <class F>
void Step(RunContext& ctx, const char* procedure, F&& f)
{
    Guarded(ctx, kModule, procedure, false, 0, [&] {
        f();
        return 0;
    });
}

// The surface keeps its own 10 points when the settings give no marks size.
int MarksFontSize(const RunContext& ctx) { return ctx.Font.Size > 0 ? ctx.Font.Size : 10; }

bool TextIsTrue(const QString& text)
{
    const QString t = text.trimmed();
    return t.compare(QLatin1String("True"), Qt::CaseInsensitive) == 0 || t == QLatin1String("-1") ||
           t == QLatin1String("1");
}

// An option without a record is no candidate, and not a failure worth a report.
bool IsTickedOption(const RunContext& ctx, int i)
{
    bool ticked = false;
    IgnoringErrors([&] {
        const VoteOption& o = ctx.voteOptions(i);
        ticked = o.value > 0 && o.isCorrect && (!ctx.OnlyHighlightHighest || o.isHighest);
    });
    return ticked;
}

int StoredGlyphHeight(const FrmTChart& form) { return form.property(kGlyphHeightProperty).toInt(); }

// Where the tick of option `i` goes, in pixels of the chart; (40, 40) if the reading fails.
// `point` is the option's point, past a pie's blank first point.
QPointF TickAnchor(RunContext& ctx, ::tallix::TChart& chart, int i, int point, const char* P)
{
    const short g = ctx.GraphType;
    QPointF at(40, 40);
    Step(ctx, P, [&] {
        if (IsVerticalBar(g)) {
            const TSeries& s = chart.SERIES(0);
            at.setX(s.CalcXPos(i));
            at.setY(s.CalcYPos(i));
        } else if (g == 6) {
            TAnnotationTool& text = chart.Tools.Items(i).asAnnotation();
            at.setX(text.Shape.Left);
            at.setY(text.Shape.Top);
        } else if (IsHorizontalBar(g)) {
            const TSeries& s = chart.SERIES(0);
            at.setX(s.CalcXPos(i));
            // A fifth of the way from the previous bar; the first bar has none, so 20 pixels.
            if (i > 0) {
                const double pitch = s.CalcYPos(i) - s.CalcYPos(i - 1);
                at.setY(s.CalcYPos(i) + (ctx.InvertScale ? 0.2 : -0.2) * pitch);
            } else {
                at.setY(s.CalcYPos(i) - 20);
            }
        } else if (IsPieKind(g)) {
            const TMarkPosition& m = chart.SERIES(0).Marks.Positions.Position(point);
            at.setX(m.LeftTop.x() + m.Width);
            at.setY(m.LeftTop.y() + m.Height / 2.0);
        }
    });
    return at;
}

// Beside a pie the glyph is lifted by half its measured height, then pulled towards the middle
// of the window near its top and bottom, the more so the more a 3D pie is tilted.
void CorrectPieTick(RunContext& ctx, FrmTChart& form, ::tallix::TChart& chart, TAnnotationTool& tick, double y)
{
    const short g = ctx.GraphType;
    const bool flat = g == 0 || g == 13;
    const double H = form.height(); // pixels
    const int e = chart.Aspect.Elevation;
    ctx.pump->DoEvents();
    tick.Shape.Top = int(std::lround(y - StoredGlyphHeight(form) / 2.0));
    ctx.pump->DoEvents();
    double top = tick.Shape.Top;
    if (top < 0.25 * H) {
        const double r = flat ? 0.001 : 0.0026 * (360 - e) - 0.0134;
        top += r * (H - top);
        tick.Shape.Top = int(std::lround(top));
        top = tick.Shape.Top;
    }
    if (top > 0.4 * H) {
        const double r = flat ? 0.025 : 0.0035 * (360 - e) - 0.0161;
        top -= r * top;
        tick.Shape.Top = int(std::lround(top));
    }
}

} // namespace

void DisplayTick(RunContext& ctx, FrmTChart& form)
{
    const char* P = "DisplayTick";
    const short g = ctx.GraphType;
    const bool pie = IsPieKind(g);
    ::tallix::TChart* chart = nullptr;
    int count = 0;
    Step(ctx, P, [&] {
        // Mark and point positions are only real once the chart has painted; a chart off view
        // paints only when asked.
        for (int k = 0; k < 11; ++k)
            ctx.pump->DoEvents();
        chart = &form.TChart(0);
        chart->Repaint();
        count = g == 6 ? chart->Tools.Count() : chart->SERIES(0).Count();
    });

    for (int i = 0; chart && i < count; ++i) {
        if (!IsTickedOption(ctx, i))
            continue;
        const int point = pie && ctx.startFrom == 1 ? i + 1 : i;
        if (ctx.CorrectAnswerStyle == 0) {
            Step(ctx, P, [&] {
                if (g == 6)
                    chart->Tools.Items(i).asAnnotation().Shape.Font.Color = OleColor(ctx.tickColour);
                else
                    chart->SERIES(0).PointColor(point) = OleColor(ctx.tickColour);
            });
            continue;
        }
        if (ctx.CorrectAnswerStyle != 1)
            continue;

        // Always a fresh annotation: an earlier one (the abstain count) keeps its text.
        TAnnotationTool* tick = nullptr;
        Step(ctx, P, [&] {
            TTool& tool = chart->Tools.Items(chart->Tools.Add(tkAnnotation));
            tool.Active = true;
            tick = &tool.asAnnotation();
        });
        if (!tick)
            continue;
        const QPointF at = TickAnchor(ctx, *chart, i, point, P);
        if (tick->Shape.Transparent)
            continue;
        Step(ctx, P, [&] {
            TFont& f = tick->Shape.Font;
            f.Size = MarksFontSize(ctx);
            f.Shadow.HorizSize = 4;
            f.Shadow.VertSize = 4;
            f.Shadow.Transparency = 0;
            f.Outline.Visible = true;
            f.Outline.Width = 2;
            tick->Text = kTickGlyph;
            f.Color = OleColor(ctx.tickColour);
            f.Name = QStringLiteral("Wingdings");
            // Off the chart while it is measured.
            tick->Shape.Left = -500;
        });
        Step(ctx, P, [&] {
            // Once per form, at a large size. Kept positive (bottom minus top): the pie correction
            // lifts the glyph by half of it, so a tick beside the lowest mark stays on the chart.
            for (int tries = 0; StoredGlyphHeight(form) == 0 && tries < 3; ++tries) {
                tick->Shape.Font.Size = 56;
                chart->Repaint();
                ctx.pump->DoEvents();
                form.setProperty(kGlyphHeightProperty, tick->ShapeBounds.Bottom - tick->ShapeBounds.Top);
                tick->Shape.Font.Size = 1;
                ctx.pump->DoEvents();
            }
        });
        Step(ctx, P, [&] {
            tick->Shape.Transparent = true;
            tick->Shape.Left = int(std::lround(at.x()));
            tick->Shape.Top = int(std::lround(at.y()));
        });
        if (pie)
            Step(ctx, P, [&] { CorrectPieTick(ctx, form, *chart, *tick, at.y()); });
        Step(ctx, P, [&] { tick->Shape.Font.Size = MarksFontSize(ctx) + 6; });
    }
    // The surface draws on request only: the new colours and glyphs show from this paint.
    Step(ctx, P, [&] {
        if (chart)
            chart->Repaint();
    });
    form.tickShown = true;
}

void CheckOverlapMarks(RunContext& ctx, FrmTChart& form, short& pointCount)
{
    const char* P = "CheckOverlapMarks";
    const short g = ctx.GraphType;
    ::tallix::TChart* chart = nullptr;
    bool pairs = false;
    Step(ctx, P, [&] {
        // The marks have their drawn places only after the chart has painted.
        for (int k = 0; k < 500; ++k)
            ctx.pump->DoEvents();
        chart = &form.TChart(0);
        pairs = chart->SeriesCount() >= 2 && (IsHorizontalBar(g) || IsVerticalBar(g));
        if (pairs)
            chart->Repaint();
    });
    if (pairs) {
        for (int p = 0; p < pointCount; ++p) {
            for (int j = 0; j <= chart->SeriesCount() - 2; ++j) {
                Step(ctx, P, [&] {
                    // By index each time: a draw may renew the list of positions.
                    auto mark = [&](int s) -> TMarkPosition& { return chart->SERIES(s).Marks.Positions.Position(p); };
                    if (IsHorizontalBar(g)) {
                        // Side by side along the bars: the second goes just right of the first.
                        auto moveBeside = [&] {
                            const int right = mark(j).LeftTop.x() + mark(j).Width;
                            mark(j + 1).Custom = true;
                            mark(j + 1).LeftTop.setX(right);
                            chart->Repaint();
                        };
                        auto pastEdge = [&] {
                            return (mark(j + 1).LeftTop.x() + mark(j + 1).Width) * kTwipsPerPixel > chart->Width();
                        };
                        if (mark(j + 1).LeftTop.x() >= mark(j).LeftTop.x() + mark(j).Width)
                            return;
                        moveBeside();
                        for (int steps = 0; pastEdge() && steps < kMaxMarginSteps; ++steps) {
                            chart->Panel.MarginRight += 2;
                            chart->Repaint();
                            moveBeside();
                        }
                    } else {
                        const int top = mark(j).LeftTop.y();
                        TMarkPosition& second = mark(j + 1);
                        if (second.LeftTop.y() + second.Height > top) {
                            second.Custom = true;
                            second.LeftTop.setY(top - second.Height);
                        }
                    }
                });
            }
        }
    }
    Step(ctx, P, [&] {
        if (chart)
            chart->Repaint();
    });
}

void SetChartTitle(RunContext& ctx, ::tallix::TChart& chart, const QString& titleSpec, const QString& filterTitle)
{
    const char* P = "SetChartTitle";
    const QStringList fields = titleSpec.split(QLatin1Char('|'));
    THeader& h = chart.Header;
    Step(ctx, P, [&] {
        if (filterTitle == QLatin1String("NULL"))
            return;
        if (h.Text.isEmpty())
            h.Text << filterTitle;
        else
            h.Text[0] = filterTitle;
    });
    Step(ctx, P, [&] {
        h.Frame.Visible = false;
        h.Shadow.Visible = false;
    });
    if (fields.size() < 7)
        return;
    TFont& f = h.Font;
    Step(ctx, P, [&] { f.Size = RoundToLong(tlxVal(fields.at(0))); });
    Step(ctx, P, [&] { f.Name = fields.at(1); });
    Step(ctx, P, [&] { f.Bold = TextIsTrue(fields.at(2)); });
    Step(ctx, P, [&] { f.Italic = TextIsTrue(fields.at(3)); });
    Step(ctx, P, [&] { f.Underline = TextIsTrue(fields.at(4)); });
    Step(ctx, P, [&] { f.Color = OleColor(RoundToLong(tlxVal(fields.at(5)))); });
    Step(ctx, P, [&] { f.Shadow.Visible = TextIsTrue(fields.at(6)); });
}

} // namespace tallix
