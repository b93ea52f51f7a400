#pragma once
// Placing our windows over the show's picture. The arithmetic is pure and in pixels;
// discovery asks the presentation host for the show's window rectangle.

#include "vote/run_state.h"

#include <functional>

namespace tallix {

struct RunContext;

// Shrinks the show window's rectangle to the slide's picture in it (the rest is black
// bars). False when the slide has no size.
bool AdjustSlideShowRECTforScreenRatio(WindowRect& rect, double slideWidth, double slideHeight);
bool AdjustSlideShowRECTforScreenRatio(RunContext& ctx, WindowRect& rect);

enum AlignMode : short { AlignByFraction = 0, AlignCentred = 1, AlignBottomRight = 2 };

// Where `window` goes relative to `reference` (already corrected when the caller wants
// it). A size fraction of -1 keeps the window's own size.
WindowRect AlignWindow(WindowRect reference, const WindowRect& window, short mode, float topFraction,
                       float leftFraction, float heightFraction, float widthFraction);

// Refreshes the show's and the edit window's rectangles from the host; true if found.
bool RecordPPTHandles(RunContext& ctx);

// Where `window` goes over the show's picture; the edit window serves when no show
// runs, the desktop when neither does.
WindowRect AlignWindowToPPTSlideShow(RunContext& ctx, const WindowRect& window, short mode, float topFraction,
                                     float leftFraction, float heightFraction, float widthFraction);

// Pulls a dragged window back inside the show's picture.
WindowRect CheckWindowInBoundsOfSlideShow(RunContext& ctx, const WindowRect& window);
WindowRect KeepInside(const WindowRect& bounds, const WindowRect& window);

void MoveCursorTopRight(RunContext& ctx);

// Steps a window's opacity from `from` to `to` over `seconds`, pumping as it goes.
void FadeWindow(RunContext& ctx, const std::function<void(double)>& setOpacity, double from, double to,
                double seconds);

// What the logic cannot reach without a window system; the program fills these.
struct DesktopServices {
    WindowRect desktop{0, 0, 1920, 1080};
    std::function<void(int x, int y)> moveCursor;
    std::function<void()> releaseCursorClip;
};
DesktopServices& Desktop();

} // namespace tallix
