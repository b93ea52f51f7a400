#include "refresh_tchart.h"

#include "chartwindow/ui/frm_tchart.h"
#include "foundation/error_report.h"
#include "foundation/host.h"
#include "foundation/logs.h"
#include "vote/run_context.h"

#include <QGuiApplication>
#include <QScreen>

namespace tallix {

QImage& backgroundPicture()
{
    static QImage picture;
    return picture;
}

namespace {
bool RealDisplay()
{
    const QString p = QGuiApplication::platformName();
    return !p.isEmpty() && p != QLatin1String("offscreen") && p != QLatin1String("minimal");
}

QRect ShowWindowRect(RunContext& ctx)
{
    if (ctx.oPPT && ctx.oPPT->SlideShowWindowsCount() > 0)
        return ctx.oPPT->SlideShowWindows(1)->Rect();
    return {};
}
} // namespace

void GrabBackgroundClip(RunContext& ctx)
{
    static bool busy = false;
    if (busy)
        return;
    busy = true;
    Guarded(ctx, "Common_grabber", "GrabBackgroundClip", false, 0, [&] {
        const QRect show = ShowWindowRect(ctx);
        if (show.width() > 0 && show.height() > 0 && RealDisplay()) {
            if (QScreen* screen = QGuiApplication::primaryScreen())
                backgroundPicture() = screen->grabWindow(0, show.x(), show.y(), show.width(), show.height()).toImage();
        }
        return 0;
    });
    busy = false;
}

QRect FitClip(QRect area, QSize cell)
{
    if (area.width() <= 0 || area.height() <= 0)
        area.setSize(cell);
    int w = area.width(), h = area.height();
    while (area.y() + h > cell.height() && h > 1)
        --h;
    while (area.x() + w > cell.width() && w > 1)
        --w;
    return QRect(area.x(), area.y(), w, h);
}

void RefreshTChart(RunContext& ctx, FrmTChart& form, short sample, short oneElement, short elementIndex,
                   short skipClip)
{
    Guarded(ctx, "Common_RefreshTChartMod", "RefreshTChart", false, 0, [&] {
        const QImage& picture = backgroundPicture();
        // Without a picture (no display, or no show window) the panel keeps its colour.
        if (picture.isNull())
            return 0;
        const QRect show = ShowWindowRect(ctx);
        const QPoint offset = sample ? QPoint() : show.topLeft();
        if (!skipClip) {
            const int first = oneElement ? elementIndex : 0;
            const int last = oneElement ? elementIndex : form.TChart.UBound();
            for (int i = first; i <= last; ++i) {
                if (!form.TChart.Exists(i))
                    continue;
                ::tallix::TChart& c = form.TChart(i);
                const int left = form.x() + std::max(0, c.x()) - offset.x();
                const int top = form.y() + std::max(0, c.y()) - offset.y();
                WriteDebugLog(ctx, 0,
                              QStringLiteral("theForm.TChart(%1): Width = %2, Height = %3")
                                  .arg(i)
                                  .arg(c.width())
                                  .arg(c.height()),
                              "Common_RefreshTChartMod", "RefreshTChart");
                const QRect clip = FitClip(QRect(std::max(0, left), std::max(0, top), c.width(), c.height()),
                                           picture.size());
                c.Panel.backImage = picture.copy(clip);
                c.Panel.BackImageMode = 1;
            }
        }
        const QRect whole = FitClip(QRect(std::max(0, form.x() - show.x()), std::max(0, form.y() - show.y()),
                                          form.width(), form.height()),
                                    picture.size());
        form.formPicture = picture.copy(whole);
        return 0;
    });
}

} // namespace tallix
