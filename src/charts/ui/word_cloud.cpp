#include "word_cloud.h"

#include "charts/ui/chart_display.h"
#include "chartwindow/ui/frm_tchart.h"
#include "chartwindow/ui/refresh_tchart.h"
#include "foundation/numbers.h"
#include "vote/run_context.h"

namespace tallix {

void DisplayWordCloud(RunContext& ctx, FrmTChart& form, const QStringList& words, const QList<int>& counts,
                      const QRectF& place)
{
    ChartStep(ctx, "DisplayWordCloud", [&] {
        const QRect show = form.showRect;
        form.setGeometry(qRound(show.x() + place.x() * show.width()), qRound(show.y() + place.y() * show.height()),
                         std::max(1, qRound(place.width() * show.width())),
                         std::max(1, qRound(place.height() * show.height())));
        for (int i = form.TChart.UBound(); i >= 1; --i)
            if (form.TChart.Exists(i))
                form.TChart.Unload(i);
        TChart& chart = form.TChart(0);
        chart.Move(0, 0, form.width() * kTwipsPerPixel, form.height() * kTwipsPerPixel);
        chart.RemoveAllSeries();
        chart.Legend.Visible = false;
        chart.Header.Text.clear();
        // The slide shows through: the cloud is words only.
        chart.Panel.Color = clNone;
        chart.Page.MaxPointsPerPage = 9999;   // one picture, never pages
        TSeries& cloud = chart.SERIES(chart.AddSeries(scWordCloud)).asWordCloud();
        if (!ctx.Font.Name.isEmpty())
            cloud.Marks.Font.Name = ctx.Font.Name;
        if (tlxVal(ctx.WCFontSize[0]) > 0)
            cloud.WordFontMin = int(tlxVal(ctx.WCFontSize[0]));
        if (tlxVal(ctx.WCFontSize[1]) > 0)
            cloud.WordFontMax = int(tlxVal(ctx.WCFontSize[1]));
        if (!ctx.WCColour[0].trimmed().isEmpty())
            cloud.WordColorMin = OleColor(qint64(tlxVal(ctx.WCColour[0])));
        if (!ctx.WCColour[1].trimmed().isEmpty())
            cloud.WordColorMax = OleColor(qint64(tlxVal(ctx.WCColour[1])));
        for (int i = 0; i < words.size() && i < counts.size(); ++i)
            cloud.Add(counts[i], words[i], clNone);
        chart.SetVisible(true);
    });
    RefreshTChart(ctx, form, 0, 0, 0, 0);
    form.ShowMe();
}

} // namespace tallix
