#include "chart_window.h"

#include "charts/ui/chart_display.h"
#include "charts/ui/marks_and_ticks.h"
#include "charts/ui/multi_chart.h"
#include "charts/ui/rating_chart.h"
#include "charts/ui/word_cloud.h"
#include "chartwindow/ui/frm_tchart.h"
#include "chartwindow/ui/refresh_tchart.h"
#include "vote/not_built.h"
#include "vote/run_context.h"
#include "vote/vote_main.h"

#include <QTimer>

namespace tallix {

ChartWindowProcedures::ChartWindowProcedures(RunContext& ctx) : ctx_(ctx) {}

ChartWindowProcedures::~ChartWindowProcedures()
{
    if (ctx_.FrmTChart == form_.get())
        ctx_.FrmTChart = nullptr;
    if (ctx_.chartProcedures == this)
        ctx_.chartProcedures = nullptr;
}

FrmTChart& ChartWindowProcedures::LoadForm()
{
    if (!form_) {
        form_ = std::make_unique<FrmTChart>(ctx_);
        form_->gotoMainSub = [this] {
            // The form goes first, once the timer's own handler has returned.
            QTimer::singleShot(0, [this] {
                UnloadForm();
                Main(ctx_);
            });
        };
        form_->Form_Load();
        ctx_.FrmTChart = form_.get();
    }
    return *form_;
}

void ChartWindowProcedures::UnloadForm()
{
    if (!form_)
        return;
    form_->Form_Unload();
    form_->hide();
    if (ctx_.FrmTChart == form_.get())
        ctx_.FrmTChart = nullptr;
    form_.release()->deleteLater();
}

void ChartWindowProcedures::DisplayChart(DisplayChartArgs& args)
{
    FrmTChart& form = LoadForm();
    ::tallix::DisplayChart(ctx_, form, args);
    // Series side by side may put their marks on one another; one series never does.
    if (form.TChart.Exists(0) && form.TChart(0).Visible() && form.TChart(0).SeriesCount() >= 2) {
        short points = ctx_.optionCount;
        CheckOverlapMarks(ctx_, form, points);
    }
}

void ChartWindowProcedures::DisplayMultiChart(short displayBy, short iterations, bool filterSet)
{
    MultiChartArgs args;
    args.filterSet = filterSet ? 1 : 0;
    ::tallix::DisplayMultiChart(ctx_, LoadForm(), displayBy, iterations, args);
}

void ChartWindowProcedures::DisplayTick() { ::tallix::DisplayTick(ctx_, LoadForm()); }

void ChartWindowProcedures::DrawDynamicChart() { NotBuiltYet(ctx_, "CVote", "DrawDynamicChart"); }

void ChartWindowProcedures::GrabBackground(const char*) { GrabBackgroundClip(ctx_); }

void ChartWindowProcedures::ShowLegend()
{
    if (form_)
        ::tallix::ShowLegend(ctx_, *form_);
}

void ChartWindowProcedures::DisplayRatingChart(short itemIndex, short showNow, short sample, short filterSet,
                                               short rebuild)
{
    ::tallix::DisplayRatingChart(ctx_, LoadForm(), itemIndex, showNow, sample, filterSet, rebuild);
}

void ChartWindowProcedures::DisplayRatingDistribution(short itemIndex)
{
    if (form_)
        ::tallix::DisplayRatingDistribution(ctx_, *form_, itemIndex);
}

void ChartWindowProcedures::ShowRankResultsAll()
{
    if (form_)
        ::tallix::ShowRankResultsAll(ctx_, *form_);
}

void ChartWindowProcedures::RefreshResult()
{
    if (form_)
        RefreshTChart(ctx_, *form_, 0, 0, 0, 0);
}

void ChartWindowProcedures::HideDistribution()
{
    if (form_ && form_->TChart.Exists(0))
        form_->TChart(0).SetVisible(false);
}

void ChartWindowProcedures::DisplayWordCloud(const QStringList& words, const QList<int>& counts,
                                             const QRectF& place)
{
    ::tallix::DisplayWordCloud(ctx_, LoadForm(), words, counts, place);
}

std::unique_ptr<ChartWindowProcedures> InstallChartWindow(RunContext& ctx)
{
    auto procedures = std::make_unique<ChartWindowProcedures>(ctx);
    ctx.chartProcedures = procedures.get();
    return procedures;
}

} // namespace tallix
