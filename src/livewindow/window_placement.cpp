#include "window_placement.h"

#include "foundation/clock.h"
#include "foundation/error_report.h"
#include "foundation/event_pump.h"
#include "foundation/host.h"
#include "foundation/logs.h"
#include "vote/run_context.h"

#include <cmath>
#include <cstdlib>

namespace tallix {

DesktopServices& Desktop()
{
    static DesktopServices services;
    return services;
}

bool AdjustSlideShowRECTforScreenRatio(WindowRect& rect, double slideWidth, double slideHeight)
{
    if (slideWidth <= 0 || slideHeight <= 0)
        return false;
    const double slideRatio = slideWidth / slideHeight;
    const double h = std::abs(rect.Bottom - rect.Top);
    const double w = std::abs(rect.Right - rect.Left);
    if (h <= 0 || w <= 0)
        return true;
    if (w / h < slideRatio) {
        const double scale = w / slideWidth;
        const double margin = (h - slideHeight * scale) / 2;
        rect.Top = int(std::lround(rect.Top + margin));
        rect.Bottom = int(std::lround(rect.Bottom - margin));
    } else if (w / h > slideRatio) {
        const double scale = h / slideHeight;
        const double margin = (w - slideWidth * scale) / 2;
        rect.Left = int(std::lround(rect.Left + margin));
        rect.Right = int(std::lround(rect.Right - margin));
    }
    return true;
}

bool AdjustSlideShowRECTforScreenRatio(RunContext& ctx, WindowRect& rect)
{
    return Guarded(ctx, "Common_PPAPP_Functions", "AdjustSlideShowRECTforScreenRatio", false, false, [&] {
        if (!ctx.oPres && ctx.oPPT)
            ctx.oPres = ctx.oPPT->ActivePresentation();
        if (!ctx.oPres)
            return false;
        const host::PageSetup page = ctx.oPres->GetPageSetup();
        return AdjustSlideShowRECTforScreenRatio(rect, page.SlideWidth, page.SlideHeight);
    });
}

WindowRect AlignWindow(WindowRect ref, const WindowRect& window, short mode, float topFraction, float leftFraction,
                       float heightFraction, float widthFraction)
{
    // A maximised window overhangs the screen by a few pixels.
    if (ref.Left >= -9 && ref.Left <= -1) {
        ref.Bottom += ref.Top;
        ref.Right += ref.Left;
        ref.Left = 0;
        ref.Top = 0;
    }
    const int refHeight = ref.Bottom - ref.Top;
    const int refWidth = ref.Right - ref.Left;
    int height = window.Bottom - window.Top;
    int width = window.Right - window.Left;
    int left = window.Left;
    int top = window.Top;
    switch (mode) {
    case AlignByFraction:
        if (heightFraction != -1 && widthFraction != -1) {
            height = int(std::trunc(double(heightFraction) * refHeight));
            width = int(std::trunc(double(widthFraction) * refWidth));
        }
        top = int(std::trunc(double(topFraction) * refHeight + ref.Top));
        left = int(std::trunc(double(leftFraction) * refWidth + ref.Left));
        break;
    case AlignCentred:
        left = ref.Left + (refWidth - width) / 2;
        top = ref.Top + (refHeight - height) / 2;
        break;
    case AlignBottomRight:
        left = ref.Right - width - 120;
        top = ref.Bottom - height - 120;
        break;
    default:
        break;
    }
    return {left, top, left + width, top + height};
}

bool RecordPPTHandles(RunContext& ctx)
{
    return Guarded(ctx, "Common_PPAPP_Functions", "RecordPPTHandles", false, false, [&] {
        ctx.PowerPoint_hWnd = 0;
        ctx.PowerPointSlideShow_hwnd = 0;
        if (!ctx.oPPT)
            return false;
        // The host's document window stands on the primary screen.
        ctx.PowerPoint_hWnd = 1;
        ctx.PowerPointRECT = Desktop().desktop;
        if (ctx.oPPT->SlideShowWindowsCount() > 0) {
            const QRect r = ctx.oPPT->SlideShowWindows(1)->Rect();
            ctx.PowerPointSlideShow_hwnd = 2;
            WindowRect show{r.left(), r.top(), r.left() + r.width(), r.top() + r.height()};
            AdjustSlideShowRECTforScreenRatio(ctx, show);
            ctx.PowerPointSlideShowRECT = show;
        }
        return true;
    });
}

WindowRect AlignWindowToPPTSlideShow(RunContext& ctx, const WindowRect& window, short mode, float topFraction,
                                     float leftFraction, float heightFraction, float widthFraction)
{
    return Guarded(ctx, "Common_PPAPP_Functions", "AlignWindowToPPTSlideShow", false, window, [&] {
        RecordPPTHandles(ctx);
        WindowRect ref;
        if (ctx.PowerPointSlideShow_hwnd != 0) {
            ref = ctx.PowerPointSlideShowRECT;   // corrected when recorded
        } else if (ctx.PowerPoint_hWnd != 0) {
            WriteDebugLog(ctx, 0, "glo.PowerPointSlideShow_hwnd = 0, using PPT Edit Window handle as backup",
                          "Common_PPAPP_Functions", "AlignWindowToPPTSlideShow");
            ref = ctx.PowerPointRECT;
        } else {
            WriteDebugLog(ctx, 0,
                          "glo.PowerPointSlideShow_hwnd = 0 AND glo.PowerPoint_hWnd = 0, using Desktop Window handle "
                          "as backup",
                          "Common_PPAPP_Functions", "AlignWindowToPPTSlideShow");
            ref = Desktop().desktop;
        }
        return AlignWindow(ref, window, mode, topFraction, leftFraction, heightFraction, widthFraction);
    });
}

WindowRect KeepInside(const WindowRect& bounds, const WindowRect& window)
{
    if (bounds.isZero())
        return window;
    int left = window.Left;
    int top = window.Top;
    const int width = window.width();
    const int height = window.height();
    if (left + width > bounds.Right)
        left = bounds.Right - width;
    if (top + height > bounds.Bottom)
        top = bounds.Bottom - height;
    if (left < bounds.Left)
        left = bounds.Left;
    if (top < bounds.Top)
        top = bounds.Top;
    return {left, top, left + width, top + height};
}

WindowRect CheckWindowInBoundsOfSlideShow(RunContext& ctx, const WindowRect& window)
{
    return Guarded(ctx, "Common_PPAPP_Functions", "CheckWindowInBoundsOfSlideShow", false, window,
                   [&] { return KeepInside(ctx.PowerPointSlideShowRECT, window); });
}

void MoveCursorTopRight(RunContext& ctx)
{
    Guarded(ctx, "Common_PPAPP_Functions", "MoveCursorTopRight", false, [&] {
        if (ctx.PowerPointSlideShow_hwnd == 0)
            return;
        if (Desktop().releaseCursorClip)
            Desktop().releaseCursorClip();
        if (Desktop().moveCursor)
            Desktop().moveCursor(ctx.PowerPointSlideShowRECT.Right, ctx.PowerPointSlideShowRECT.Top);
    });
}

void FadeWindow(RunContext& ctx, const std::function<void(double)>& setOpacity, double from, double to,
                double seconds)
{
    Guarded(ctx, "Common_PPAPP_Functions", "FadeWindow", false, [&] {
        const double start = ctx.clock->secondsSinceMidnight();
        setOpacity(from);
        while (seconds > 0) {
            double t = ctx.clock->secondsSinceMidnight() - start;
            if (t < 0 || t >= seconds)
                break;
            setOpacity(from + (to - from) * t / seconds);
            ctx.pump->WaitForEvents(15);
        }
        setOpacity(to);
    });
}

} // namespace tallix
