#include "live_fixture.h"

#include "livewindow/window_placement.h"

using namespace tallix;
using tallix::testing::LiveVoteTest;

TEST(Placement, ShowRectangleShrinksToTheSlidesPicture)
{
    struct Case {
        WindowRect window;
        double slideW, slideH;
        WindowRect picture;
    } cases[] = {
        {{0, 0, 1920, 1080}, 720, 540, {240, 0, 1680, 1080}},     // 4:3 in 16:9: bars left and right
        {{0, 0, 1024, 768}, 960, 540, {0, 96, 1024, 672}},        // 16:9 in 4:3: bars top and bottom
        {{0, 0, 1920, 1080}, 960, 540, {0, 0, 1920, 1080}},       // same ratio: unchanged
        {{1920, 0, 3200, 1024}, 720, 540, {1920, 32, 3200, 992}}, // second monitor, 5:4
    };
    for (Case c : cases) {
        ASSERT_TRUE(AdjustSlideShowRECTforScreenRatio(c.window, c.slideW, c.slideH));
        EXPECT_EQ(c.window, c.picture) << c.window.Left << "," << c.window.Top << "," << c.window.Right << ","
                                       << c.window.Bottom;
    }
    WindowRect r{0, 0, 10, 10};
    EXPECT_FALSE(AdjustSlideShowRECTforScreenRatio(r, 0, 540));
}

TEST(Placement, AlignWindowModes)
{
    const WindowRect ref{100, 50, 1100, 850};
    const WindowRect win{0, 0, 200, 100};
    EXPECT_EQ(AlignWindow(ref, win, AlignByFraction, 0.1f, 0.25f, -1, -1), (WindowRect{350, 130, 550, 230}));
    EXPECT_EQ(AlignWindow(ref, win, AlignByFraction, 0, 0, 0.5f, 0.333f), (WindowRect{100, 50, 433, 450}));
    EXPECT_EQ(AlignWindow(ref, win, AlignCentred, 0, 0, -1, -1), (WindowRect{500, 400, 700, 500}));
    EXPECT_EQ(AlignWindow(ref, win, AlignBottomRight, 0, 0, -1, -1), (WindowRect{780, 630, 980, 730}));
    // A maximised reference overhangs by a few pixels: it is taken from 0,0.
    EXPECT_EQ(AlignWindow({-8, -8, 1928, 1088}, win, AlignByFraction, 0, 0, -1, -1), (WindowRect{0, 0, 200, 100}));
}

TEST(Placement, DraggedWindowIsPulledBackInside)
{
    const WindowRect bounds{240, 0, 1680, 1080};
    EXPECT_EQ(KeepInside(bounds, {1600, 1050, 1800, 1150}), (WindowRect{1480, 980, 1680, 1080}));
    EXPECT_EQ(KeepInside(bounds, {100, -20, 300, 80}), (WindowRect{240, 0, 440, 100}));
    // Bigger than the picture: it ends at the left and top edges.
    EXPECT_EQ(KeepInside(bounds, {0, 0, 2000, 1200}), (WindowRect{240, 0, 2240, 1200}));
    EXPECT_EQ(KeepInside({}, {5, 5, 10, 10}), (WindowRect{5, 5, 10, 10}));
}

TEST_F(LiveVoteTest, VotesCastWindowIsPlacedOverTheShowsPicture)
{
    ctx.vCastTop = 0.5f;
    ctx.vCastLeft = 0.25f;
    ctx.oPres->GetPageSetup();
    const WindowRect placed = AlignWindowToPPTSlideShow(ctx, {0, 0, 220, 132}, AlignByFraction, ctx.vCastTop,
                                                        ctx.vCastLeft, -1, -1);
    const WindowRect& show = ctx.PowerPointSlideShowRECT;
    EXPECT_EQ(placed.Left, show.Left + show.width() / 4);
    EXPECT_EQ(placed.Top, show.Top + show.height() / 2);
    EXPECT_EQ(placed.width(), 220);

    ppt.config().showRunning = false;
    const WindowRect fallback = AlignWindowToPPTSlideShow(ctx, {0, 0, 220, 132}, AlignCentred, 0, 0, -1, -1);
    EXPECT_EQ(ctx.PowerPointSlideShow_hwnd, 0);
    EXPECT_EQ(fallback.Left, (Desktop().desktop.width() - 220) / 2);
}

TEST_F(LiveVoteTest, FadeStepsTheOpacityOverItsTimeAndEndsExactly)
{
    std::vector<double> levels;
    const double start = run.t.clock.secondsSinceMidnight();
    FadeWindow(ctx, [&](double o) { levels.push_back(o); }, 1.0, 0.0, 0.5);
    EXPECT_NEAR(run.t.clock.secondsSinceMidnight() - start, 0.5, 0.02);
    ASSERT_GT(levels.size(), 5u);
    EXPECT_DOUBLE_EQ(levels.front(), 1.0);
    EXPECT_DOUBLE_EQ(levels.back(), 0.0);
    EXPECT_TRUE(std::is_sorted(levels.rbegin(), levels.rend()));
}
