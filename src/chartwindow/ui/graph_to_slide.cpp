// FrmTChart.GraphToSlide: each chart element becomes a picture on the question slide, born
// hidden and shown only when whole, under the name later runs look for.
#include "frm_tchart.h"

#include "chartwindow/chart_to_slide_names.h"
#include "foundation/error_report.h"
#include "foundation/host.h"
#include "foundation/logs.h"
#include "foundation/numbers.h"
#include "vote/forms.h"
#include "vote/run_context.h"
#include "vote/vote_close.h"

#include <QFileInfo>

namespace tallix {

namespace {
const char* kModule = "FrmTChart";
const char* kProc = "GraphToSlide";

template <class F>
void Step(RunContext& ctx, F&& f)
{
    Guarded(ctx, kModule, kProc, false, 0, [&] {
        f();
        return 0;
    });
}

// A further picture kept hidden for a later showing: behind the text, at its place.
void addHiddenPicture(host::Shapes* shapes, const QString& file, const QRectF& place, const QString& name)
{
    host::Shape* pic = shapes->AddPicture(file, 0, -1, 0, 0, 0, 0);
    pic->SetLockAspectRatio(false);
    pic->ZOrder(host::ZOrderCmd::SendBehindText);
    pic->SetVisible(false);
    pic->SetTop(place.top());
    pic->SetLeft(place.left());
    pic->SetWidth(place.width());
    pic->SetHeight(place.height());
    pic->SetLockAspectRatio(true);
    pic->SetName(name);
}

void LogStep(RunContext& ctx, double since, const QString& line)
{
    WriteDebugLog(ctx, float(ctx.clock->secondsSinceMidnight() - since), line, kModule, kProc);
}
} // namespace

QRectF FrmTChart::placement(int element) const
{
    ::tallix::TChart& c = const_cast<TChartArray&>(TChart)(element);
    host::PageSetup page = ctx.oPres->GetPageSetup();
    const double formLeft = x(), formTop = y();
    const double showLeft = showRect.x(), showTop = showRect.y();
    const double presenterOffset = 0;
    // A window left of the show keeps its own left edge; the top has no such guard.
    const double px = formLeft - (showLeft > formLeft ? 0 : showLeft) + c.Left() / 15.0 - presenterOffset;
    const double py = formTop - showTop + c.Top() / 15.0 - presenterOffset;
    const double left = px / showRect.width() * page.SlideWidth;
    const double top = py / showRect.height() * page.SlideHeight;
    const double h = c.Height() * ctx.HeightRatio / kTwipsPerPixel;
    const double w = c.Width() * ctx.WidthRatio / kTwipsPerPixel;
    return {left, top, w, h};
}

void FrmTChart::exportElement(int element, int pageIndex, const QRectF& place, bool forceEmf)
{
    ::tallix::TChart& c = TChart(element);
    c.Panel.BackImageClear();
    c.Panel.Color = clNone;
    const ChartExportChoice fmt = forceEmf ? ChartExportFor(QString()) : ChartExportFor(ctx.ini.chartExportFormat);
    const double t = ctx.clock->secondsSinceMidnight();
    const QString file =
        TempChartFileName(ctx.env.tempFolder(), pageIndex, ctx.clock->secondsSinceMidnight(), fmt.extension);
    auto sized = [&](TExportFormat& f) {
        f.Width = int(place.width());
        f.Height = int(place.height());
        f.SaveToFile(file);
    };
    switch (fmt.kind) {
    case ChartExportChoice::BMP: c.Export.asBMP.SaveToFile(file); break;
    case ChartExportChoice::PNG:
        // Light grey behind anti-aliased text.
        c.Panel.Color = 15592941;
        sized(c.Export.asPNG);
        break;
    case ChartExportChoice::PCX: sized(c.Export.asPCX); break;
    case ChartExportChoice::EPS: sized(c.Export.asEPS); break;
    case ChartExportChoice::WMF:
        c.Export.asMetafile.Enhanced = false;
        sized(c.Export.asMetafile);
        c.Export.asMetafile.Enhanced = true;
        break;
    case ChartExportChoice::JPG: sized(c.Export.asJPEG); break;
    case ChartExportChoice::GIF: sized(c.Export.asGIF); break;
    case ChartExportChoice::EMF:
        c.Export.asMetafile.Enhanced = true;
        c.Export.asMetafile.Width = 0;
        c.Export.asMetafile.Height = 0;
        c.Export.asMetafile.SaveToFile(file);
        break;
    }
    LogStep(ctx, t, fmt.logLine);
    lastExportFile_ = file;
}

void FrmTChart::GraphtoSlide(short index)
{
    Guarded(ctx, kModule, kProc, false, 0, [&] {
        if (!ctx.oPPT)
            return 0;
        const int version = int(tlxVal(ctx.oPPT->Version()));
        host::Slide* current = nullptr;
        IgnoringErrors([&] {
            current = ctx.oPPT->ActivePresentation()->GetSlides()->Item(ctx.currentSlide);
            current->GetTags()->Add(QStringLiteral("TLXLIVEDATAISVISIBLE"),
                                    QStringLiteral("This slide has live data visible"));
        });
        IgnoringErrors([&] {
            // Chart shapes must not be animated out by the new timeline.
            if (version == 12 && current && current->MainSequenceCount() > 0) {
                host::Shapes* shapes = current->GetShapes();
                for (int i = 1; i <= shapes->Count(); ++i) {
                    host::Shape* s = shapes->Item(i);
                    if (s->Name().contains(QLatin1String("tlx")) && s->Animate())
                        s->SetAnimate(false);
                }
            }
        });
        const double start = ctx.clock->secondsSinceMidnight();
        int slideNo = ctx.currentSlide;
        if (ctx.arg1 == QLatin1String("TLXRESHOW"))
            slideNo = int(tlxVal(ctx.arg2));
        if (ctx.oPPT->PresentationsCount() == 0) {
            FullShutDown(ctx);
            return 0;
        }
        host::Presentation* pres = ctx.oPPT->ActivePresentation();
        host::Slide* slide = pres->GetSlides()->Item(slideNo);
        host::Shapes* shapes = slide->GetShapes();
        const QString slideText = QString::number(slideNo);

        if (index == -1) {
            Step(ctx, [&] {
                for (int i = shapes->Count(); i >= 1; --i) {
                    host::Shape* s = shapes->Item(i);
                    if (IsLiveChartName(s->Name()))
                        s->Delete();
                }
            });
            LogStep(ctx, start, QStringLiteral("Delete Live Charts"));
        }
        shapeNames.clear();
        const int elementCount = TChart.UBound() + 1;
        int first = 0;
        if (ctx.GraphType == 7 && index == -1) {
            first = 1;
            Step(ctx, [&] {
                const QRectF p = placement(0);
                host::Shape* r = shapes->AddShape(host::AutoShape::Rectangle, -32000, -32000, p.width(), p.height());
                r->SetFillVisible(false);
                r->SetLineVisible(false);
                r->SetVisible(false);
                r->SetTop(p.top());
                r->SetLeft(p.left());
                r->SetName(QStringLiteral("tallix chart ratings"));
                shapeNames << QStringLiteral("tallix chart ratings");
            });
        }
        if (ctx.vType == 2)
            first = 0;

        for (int e = first; e < elementCount; ++e) {
            if (!TChart.Exists(e))
                continue;
            QString letter;
            if (ctx.GraphType == 7 && index > 0) {
                e = index;
                letter = QChar(u'A' + e - 1);
            } else if (ctx.vType == 2 && e >= 2) {
                letter = QChar(u'A' + e);
            }
            Step(ctx, [&] {
                const QRectF p = placement(e);
                exportElement(e, e, p, false);
                double t = ctx.clock->secondsSinceMidnight();
                host::Shape* pic = shapes->AddPicture(lastExportFile_, 0, -1, 0, 0, 0, 0);
                LogStep(ctx, t, QStringLiteral("Add chart image to slide (0,0,0,0)"));
                pic->SetVisible(false);
                pic->SetLockAspectRatio(false);
                pic->SetTop(p.top());
                pic->SetLeft(p.left());
                pic->SetWidth(p.width());
                pic->SetHeight(p.height());
                t = ctx.clock->secondsSinceMidnight();
                // A series vote shows only the element it was set to display.
                if (ctx.ShowGraphs && (ctx.vType != 2 || e == ctx.DisplayBy)) {
                    if (ctx.forms && ctx.forms->IsLoaded(FormName::vCast))
                        ctx.forms->Unload(FormName::vCast);
                    pic->SetVisible(true);
                }
                LogStep(ctx, t, QStringLiteral("Make invisible and resize chart"));
                pic->SetLockAspectRatio(true);
                LogStep(ctx, t, QStringLiteral("Set chart LockAspectRatio property = True"));
                pic->ZOrder(version >= 12 ? host::ZOrderCmd::SendBehindText : host::ZOrderCmd::SendToBack);
                LogStep(ctx, t, QStringLiteral("Send chart to back"));
                const QString name = ctx.GraphType == 7 ? letter + QStringLiteral("tallix ratings %1").arg(e + 1)
                                                        : ChartShapeName(ctx.vType, e);
                pic->SetName(name);
                if (ctx.vType != 2 || e >= 2)
                    shapeNames << name;
                if (version == 12 && pic->Visible()) {
                    IgnoringErrors([&] {
                        host::Shape* bak = shapes->Item(name + QStringLiteral(" sample-BAK"));
                        bak->SetTop(bak->Top());
                    });
                    LogStep(ctx, t, QStringLiteral("PPT2007 refresh slide bug fix"));
                }
            });
            if (ctx.GraphType == 7 && index >= 0)
                break;
        }

        if (ctx.vType == 2 && ctx.controllerVoteType != QLatin1String("6")) {
            // Each statement goes on after a failure: a failed grouping must not also leave
            // the result hidden and the slide unmarked.
            host::Shape* group = nullptr;
            Step(ctx, [&] {
                group = shapes->Group(shapeNames);
                group->SetName(QStringLiteral("tallix chart 2"));
            });
            if (ctx.ShowGraphs) {
                Step(ctx, [&] {
                    if (ctx.forms && ctx.forms->IsLoaded(FormName::vCast))
                        ctx.forms->Unload(FormName::vCast);
                });
                Step(ctx, [&] { shapes->Item(QStringLiteral("tallix chart %1").arg(ctx.DisplayBy))->SetVisible(true); });
                if (ctx.DisplayBy == 2) {
                    Step(ctx, [&] { shapes->Item(QStringLiteral("tallix chart 0"))->SetVisible(false); });
                    for (int n = 1; group && n <= ctx.Iterations; ++n)
                        Step(ctx, [&] {
                            group->GroupItems()->Item(QStringLiteral("tallix iteration %1").arg(n))->SetVisible(true);
                        });
                }
            }
            // The selections' group is a view of its own, hidden unless it is the one shown.
            if (group && !(ctx.ShowGraphs && ctx.DisplayBy == 2))
                Step(ctx, [&] { group->SetVisible(false); });
            Step(ctx, [&] { slide->GetTags()->Add(QStringLiteral("SequenceVote"), slideText); });
        }

        if (ctx.GraphType == 7 && index == -1) {
            Step(ctx, [&] {
                // The placeholder only held the place while the item pictures were made.
                QStringList pictures = shapeNames;
                pictures.removeAll(QStringLiteral("tallix chart ratings"));
                IgnoringErrors([&] { shapes->Item(QStringLiteral("tallix chart ratings"))->Delete(); });
                if (pictures.size() == 1)
                    shapes->Item(pictures.first())->SetName(QStringLiteral("tallix chart ratings"));
                else if (pictures.size() > 1)
                    shapes->Group(pictures)->SetName(QStringLiteral("tallix chart ratings"));
                shapeNames = pictures;
            });
            // Each item once more on its own, hidden, for a later showing of that item alone.
            for (int item = 1; item <= ctx.NumberRankVotes; ++item) {
                if (!TChart.Exists(item))
                    continue;
                Step(ctx, [&] {
                    const QRectF p = placement(item);
                    exportElement(item, item, p, true);
                    addHiddenPicture(shapes, lastExportFile_, p, QStringLiteral("tallix chart ") + QChar(u'A' + item - 1));
                    QFile::remove(lastExportFile_);
                });
            }
            Step(ctx, [&] { slide->GetTags()->Add(QStringLiteral("RankVote"), slideText); });
        }

        // One picture per further page of a paged bar chart, kept for the reshow.
        Step(ctx, [&] {
            if (!TChart.Exists(0) || ctx.GraphType == 7)
                return;
            ::tallix::TChart& c = TChart(0);
            const int perPage = c.Page.MaxPointsPerPage;
            const int pages = c.Page.Count();
            if (ctx.optionCount <= perPage || pages < 2)
                return;
            const int was = c.Page.Current;
            const QRectF p = placement(0);
            for (int pg = 2; pg <= pages; ++pg) {
                c.Page.Current = pg;
                exportElement(0, pg, p, true);
                const QString name = QStringLiteral("tallix chart %1").arg(pg);
                addHiddenPicture(shapes, lastExportFile_, p, name);
                shapeNames << name;
            }
            c.Page.Current = was;
            c.Repaint();
            slide->GetTags()->Add(QStringLiteral("MultiDigitVote"), slideText);
        });

        if (index == -1)
            LogStep(ctx, start, QStringLiteral("GraphToSlide full time taken"));
        Step(ctx, [&] {
            if (version == 12 && slide->InteractiveSequencesCount() > 0)
                pres->SetShowWithAnimation(true);
        });
        if (ctx.CommitPresentation)
            ctx.CommitPresentation();
        return 0;
    });
}

} // namespace tallix
