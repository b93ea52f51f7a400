#include "reshow_display.h"

#include "charts/chart_colours.h"
#include "charts/chart_titles.h"
#include "foundation/dialogs.h"
#include "foundation/error_report.h"
#include "foundation/host.h"
#include "foundation/numbers.h"
#include "foundation/vb_error.h"
#include "question/columns_vote_xml.h"
#include "question/common_xml.h"
#include "question/io_vote_setup.h"
#include "question/settings_document.h"
#include "question/slide_objects.h"
#include "reshow/reshow_setup.h"
#include "reshow/result_filters.h"
#include "results/common_io.h"
#include "results/load_votes.h"
#include "vote/forms.h"
#include "vote/run_context.h"
#include "vote/series_runners.h"
#include "vote/vote_close.h"

namespace tallix {

namespace {

const char* kModule = "DisplayReshow";
const QString kSkip = QStringLiteral("xxx");

} // namespace

// In the question list once, then in the deck's slides, by identity or by the question's own
// QID when the slide was copied.
QString ResolveReshowReference(const RunContext& ctx, const QString& reference)
{
    if (reference.isEmpty())
        return kSkip;
    QStringList kept;
    for (const QString& line : ctx.questionReferences.split(u'\n'))
        if (line.contains(reference, Qt::CaseInsensitive))
            kept << line;
    if (kept.size() != 1)
        return kSkip;   // none, or more than one question answers to it
    QString found = reference;
    bool inDeck = false;
    for (const QString& s : ctx.slideList)
        inDeck = inDeck || s.contains(reference);
    if (!inDeck) {
        const QStringList fields = reference.split(u'|');
        found.clear();
        for (const QString& s : ctx.slideList)
            if (s.contains(fields.value(0) + u'|') || s.contains(u'|' + fields.value(1))) {
                found = s;
                break;
            }
        if (found.isEmpty())
            return kSkip;
    }
    return found.replace(u'|', u':');
}

namespace {

// The chart the export just put on the reshow slide, renamed for this chart and placed in
// its area exactly; born hidden, shown when whole.
void placeChart(RunContext& ctx, host::Slide* slide, int n)
{
    host::Shape* chart = ShapeNamed(slide, QStringLiteral("tallix chart"));
    if (!chart)
        return;
    const host::PageSetup page = ctx.oPres->GetPageSetup();
    const VArea& a = ctx.vArea(n);
    chart->SetName(QStringLiteral("reshow %1 tallix chart").arg(n));
    chart->SetLockAspectRatio(false);
    if (a.Width > 0 && a.Height > 0) {
        chart->SetLeft(a.Left * page.SlideWidth);
        chart->SetTop(a.Top * page.SlideHeight);
        chart->SetWidth(a.Width * page.SlideWidth);
        chart->SetHeight(a.Height * page.SlideHeight);
    }
    chart->SetVisible(true);
}

void drawChart(RunContext& ctx, int n, const QString& reference, short reshowSlide)
{
    const long identity = long(tlxVal(reference.section(u':', 0, 0)));
    host::Slide* question = ctx.oPres->GetSlides()->FindBySlideID(identity);
    const short questionSlide = short(question->SlideIndex());
    const QString votesRef = QString::number(questionSlide) + u':' + QString::number(questionSlide);
    LoadVotes(ctx, votesRef, -1);
    ctx.chartTitle.clear();
    if (ctx.ShowLabels) {
        const host::Shape* q = ShapeNamed(question, QStringLiteral("tlx_question"));
        const QString text = q && const_cast<host::Shape*>(q)->HasTextFrame()
                                 ? const_cast<host::Shape*>(q)->GetTextFrame()->Text()
                                 : QString();
        ctx.chartTitle = CreateChartTitle(text, ctx.reshowFilter(n), ctx.rshFilterType == 1);
    }
    createFilter(ctx, ctx.reshowFilter(n));
    LoadChartXML(ctx, identity);
    // Counted again, now through the chart's filter.
    LoadVotes(ctx, votesRef, -1);
    if (tlxVal(ctx.controllerVoteType) == 0)
        ctx.controllerVoteType = QStringLiteral("9");
    ctx.ShowGraphs = false;
    // The result window lies over this chart's area, so the picture keeps the area's shape.
    if (ctx.vArea(n).Width > 0 && ctx.vArea(n).Height > 0) {
        ctx.vArea(0) = ctx.vArea(n);
        if (ctx.forms)
            ctx.forms->Unload(FormName::FrmTChart);
    }
    execRevote(ctx, questionSlide, reshowSlide);
    placeChart(ctx, SlideAt(ctx, reshowSlide), n);
}

} // namespace

void DisplayReshow(RunContext& ctx)
{
    Guarded(ctx, kModule, "DisplayReshow", true, [&] {
        const short reshowSlide = short(tlxVal(ctx.arg2));
        host::Slide* slide = SlideAt(ctx, reshowSlide);
        SettingsDocument& doc = settingsDocOf(ctx);
        const bool parsed = doc.loadXML(slide->GetTags()->Item(QStringLiteral("TLXRESHOW")));
        if (parsed)
            SetReshowVarsFromXML(ctx);
        host::Shapes* shapes = slide->GetShapes();
        for (int i = shapes->Count(); i >= 1; --i) {
            const QString name = shapes->Item(i)->Name();
            if (name.contains(QLatin1String("reshow")) && name.contains(QLatin1String("chart")) &&
                !name.contains(QLatin1String("sample")))
                shapes->Item(i)->Delete();
        }
        GetSlideInfo(ctx);
        if (!parsed) {
            ctx.dialogs->MsgBox(QStringLiteral("Unable to load reshow settings, please run slide editor"), 0, "tallix");
            FullShutDown(ctx);
            return;
        }
        // A reshow saves nothing and starts from a vote's defaults; each question then
        // brings its own settings.
        ctx.voteCancelled = 1;
        const auto areas = ctx.vArea;
        const auto filters = ctx.reshowFilter;
        for (int n = 1; n <= areas.ubound(); ++n) {
            const QString reference = ResolveReshowReference(ctx, areas(n).questionSlideRef);
            if (reference == kSkip)
                continue;
            LoadDefaultXML(ctx);
            LoadDefaultColours(ctx, -1);
            ResetSeriesColours(ctx);
            ctx.vArea = areas;
            ctx.reshowFilter = filters;
            Guarded(ctx, kModule, "DisplayReshow", true, [&] { drawChart(ctx, n, reference, reshowSlide); });
        }
        ctx.currentSlide = reshowSlide;
        RecordVoteEnd(ctx, "End of Reshow");
    });
}

} // namespace tallix
