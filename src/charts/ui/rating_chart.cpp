#include "rating_chart.h"

#include "charts/chart_colours.h"
#include "charts/collation.h"
#include "charts/rank_markers.h"
#include "charts/ui/chart_display.h"
#include "chartwindow/ui/frm_tchart.h"
#include "chartwindow/ui/refresh_tchart.h"
#include "foundation/error_report.h"
#include "foundation/numbers.h"
#include "question/common_xml.h"
#include "vote/run_context.h"

#include <random>

namespace tallix {

namespace {

constexpr short kAllItems = 26;

OleColor barColour(RunContext& ctx)
{
    return ctx.BarColour != 0 ? OleColor(ctx.BarColour) : OptionColour(ctx, 0);
}

// The item's saved place, as fractions of the result window; without one (or with no
// size) the items share the window in rows, one under the other, a gap between bars.
QRect itemPlace(const RunContext& ctx, const FrmTChart& form, short itemIndex)
{
    const int w = form.width(), h = form.height();
    const int item = itemIndex - 1;
    if (item >= 0 && item <= ctx.RankPosition.ubound()) {
        const RankPositionRecord& r = ctx.RankPosition(item);
        if (r.W > 0 && r.L > 0)
            return QRect(qRound(r.X * w), qRound(r.Y * h), qRound(r.W * w), qRound(r.L * h));
    }
    const int items = std::max<int>({ctx.NumberRankVotes, itemIndex, 1});
    const double slot = double(h) / items;
    return QRect(0, qRound(item * slot + slot * 0.2), w, std::max(1, qRound(slot * 0.6)));
}

void fillSampleVotes(RunContext& ctx)
{
    ctx.keypadUniverse = 50;
    ctx.votes.redim(50);
    std::uniform_real_distribution<double> draw(0.0, 1.0);
    for (QString& v : ctx.votes)
        v = QString::number(int(draw(ctx.rnd) * ctx.optionCount) + 1);
}

void buildDistribution(RunContext& ctx, FrmTChart& form)
{
    TChart& chart = form.TChart(0);
    chart.Panel.MarginLeft = 10;
    chart.Scroll.Enable = 0;
    chart.RemoveAllSeries();
    for (int item = 0; item < ctx.NumberRankVotes; ++item) {
        TSeries& s = chart.SERIES(chart.AddSeries(scBar));
        s.Active = false;
        s.BarPen.Visible = ctx.GraphOutline.Visible;
        s.BarPen.Color = OleColor(ctx.GraphOutline.Colour);
        s.ColorEachPoint = true;
        s.MultiBar = 0;
        ApplyMarksFont(ctx, s);
        s.Marks.Transparent = true;
        if (ctx.startFrom == 1)
            s.AddNull();
        for (int m = 0; m < ctx.optionCount; ++m) {
            const double n = m <= ctx.ratingDistribution.ubound1() && item <= ctx.ratingDistribution.ubound2()
                                 ? ctx.ratingDistribution(m, item)
                                 : 0.0;
            s.Add(n, QString(), OptionColour(ctx, OptionColourIndex(m)));
        }
    }
    chart.Move(0, 0, form.width() * kTwipsPerPixel, form.height() * kTwipsPerPixel);
    chart.Axis.Bottom.Visible = true;
    if (ctx.startFrom == 1)
        AdjustAxes(ctx, form, 0, 0);
}

} // namespace

void DisplayRatingChart(RunContext& ctx, FrmTChart& form, short itemIndex, short showNow, short sample,
                        short filterSet, short rebuild)
{
    const char* P = "DisplayRatingChart";
    if (itemIndex < 1)
        return;
    ChartStep(ctx, P, [&] {
        ctx.optionCounts.redim(ctx.NumberRankVotes);
        if (sample != 0)
            fillSampleVotes(ctx);
        CollateRatingItem(ctx, itemIndex, filterSet);
    });
    ChartStep(ctx, P, [&] {
        if (!form.TChart.Exists(itemIndex))
            form.TChart.Load(itemIndex);
        TChart& chart = form.TChart(itemIndex);
        chart.Tools.Clear();
        chart.Zoom.Enable = false;
        chart.Scroll.Enable = 0;
        const QRect place = itemPlace(ctx, form, itemIndex);
        chart.Move(place.x() * kTwipsPerPixel, place.y() * kTwipsPerPixel, place.width() * kTwipsPerPixel,
                   place.height() * kTwipsPerPixel);
        chart.SetVisible(true);
        chart.ZOrder();
        chart.RemoveAllSeries();

        TSeries& bar = chart.SERIES(chart.AddSeries(scHorizBar));
        bar.BarPen.Visible = ctx.GraphOutline.Visible;
        bar.BarPen.Color = OleColor(ctx.GraphOutline.Colour);
        bar.BarBrush.Style = ctx.GraphOutline.FillStyle;
        const float average = itemIndex - 1 <= ctx.ratingAverages.ubound() ? ctx.ratingAverages(itemIndex - 1) : 0;
        bar.Add(average, QString(), barColour(ctx));
        bar.ValueFormat = QStringLiteral("#,##0.00");
        bar.BarWidthPercent = 180;
        bar.Marks.ArrowLength = 0;
        bar.Marks.Arrow.Visible = false;
        bar.Marks.Transparent = true;
        bar.Marks.Style = 0;
        ApplyMarksFont(ctx, bar);

        TAxis& marks = chart.Axis.Bottom;
        marks.Automatic = false;
        marks.AutomaticMinimum = false;
        marks.AutomaticMaximum = false;
        marks.Minimum = 0;
        marks.Maximum = std::max<int>(ctx.NumberRankVotes, ctx.optionCount);
        marks.MaximumOffset = 0;
        marks.Labels.Visible = false;
        chart.Axis.Left.Visible = false;
        chart.Panel.MarginUnits = 1;
        chart.Panel.MarginRight = 80;
        chart.Panel.MarginLeft = 10;
        chart.Aspect.View3D = ctx.ThreeDTwoD == 0;
        chart.Aspect.Chart3DPercent = 40;
    });
    if (showNow != 0 && rebuild == 0) {
        RefreshTChart(ctx, form, sample, 1, itemIndex, 0);
        if (sample == 0)
            ChartStep(ctx, P, [&] { form.TChart(itemIndex).SetVisible(true); });
        form.ShowMe();
    }
    ChartStep(ctx, P, [&] {
        buildDistribution(ctx, form);
        // The spread waits for the presenter's Alt and letter.
        form.TChart(0).SetVisible(false);
    });
}

void DisplayRatingDistribution(RunContext& ctx, FrmTChart& form, short itemIndex)
{
    ChartStep(ctx, "DisplayRatingDistribution", [&] {
        TChart& spread = form.TChart(0);
        spread.Aspect.Chart3DPercent = 40;
        if (itemIndex == kAllItems) {
            spread.SetVisible(false);
            for (int i = 1; i <= form.TChart.UBound(); ++i)
                if (form.TChart.Exists(i))
                    form.TChart(i).SetVisible(true);
            form.overview = true;
            return;
        }
        if (itemIndex < 1 || itemIndex > spread.SeriesCount())
            return;
        for (int i = 1; i <= form.TChart.UBound(); ++i)
            if (form.TChart.Exists(i))
                form.TChart(i).SetVisible(false);
        for (int s = 0; s < spread.SeriesCount(); ++s)
            spread.SERIES(s).Active = s == itemIndex - 1;
        spread.SetVisible(true);
        form.overview = false;
        if (ctx.arg1.endsWith(QLatin1String("tlx"), Qt::CaseInsensitive))
            positionCurrentRankIndicator(ctx, short(itemIndex - 1));
    });
}

void ShowRankResultsAll(RunContext& ctx, FrmTChart& form)
{
    ChartStep(ctx, "showRankResultsAll", [&] {
        if (form.TChart.Exists(0))
            form.TChart(0).SetVisible(false);
        for (int i = 1; i <= form.TChart.UBound(); ++i)
            if (form.TChart.Exists(i))
                form.TChart(i).SetVisible(true);
        form.overview = true;
        // The question's own keys, read from its document as the slide editor wrote them.
        const QString section = XMLGetString(ctx, QStringLiteral("rank_vote"));
        const QString rank = XMLGetItem(QStringLiteral("HighlightRank"), section);
        const QString colour = XMLGetItem(QStringLiteral("HighlightColour"), section);
        const short highlight = rank.isEmpty() ? ctx.HighlightRank : short(tlxVal(rank));
        const qint32 highlightColour = colour.isEmpty() ? ctx.HighlightColour : qint32(tlxVal(colour));
        if (highlight == 1) {
            float best = -1;
            for (float a : ctx.ratingAverages)
                best = std::max(best, a);
            for (int item = 0; item <= ctx.ratingAverages.ubound(); ++item) {
                if (ctx.ratingAverages(item) != best || !form.TChart.Exists(item + 1))
                    continue;
                TChart& chart = form.TChart(item + 1);
                if (chart.SeriesCount() > 0 && chart.SERIES(0).Count() > 0)
                    chart.SERIES(0).PointColor(0) = OleColor(highlightColour);
                chart.Repaint();
            }
        }
        ctx.ratingVoteStarted = 1;
    });
}

} // namespace tallix
