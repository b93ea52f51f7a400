// The votes-cast window on the offscreen platform. With TALLIX_WRITE_SCREENSHOTS set to a
// folder, the count-up and count-down pictures are written there (docs/ in the tree).

#include "livewindow/ui/keypads_not_voted_window.h"
#include "livewindow/ui/live_window_forms.h"
#include "livewindow/ui/votes_cast_window.h"
#include "livewindow/window_placement.h"
#include "support/test_context.h"
#include "vote/votes_cast_boxes.h"

#include <QCoreApplication>
#include <QImage>
#include <QKeyEvent>
#include <QPixmap>
#include <gtest/gtest.h>

using namespace tallix;
using tallix::testing::TestRun;

namespace {

class VotesCastWindowTest : public ::testing::Test {
protected:
    TestRun run;
    RunContext& ctx = run.ctx;

    VotesCastWindowTest()
    {
        ctx.keypadUniverse = 40;
        ctx.maxKeypads = 40;
        ctx.optionCount = 4;
        ctx.startFrom = 1;
        ctx.terminator = [](int code) { throw ProcessExit{code}; };
        ResetVoteArrays(ctx);
    }

    void save(QWidget& w, const char* name)
    {
        const QByteArray dir = qgetenv("TALLIX_WRITE_SCREENSHOTS");
        if (!dir.isEmpty())
            w.grab().save(QString::fromLocal8Bit(dir) + "/" + name);
    }

    // Share of the window's pixels that are light, i.e. text or bar.
    static double lightShare(const QImage& img)
    {
        int light = 0;
        for (int y = 0; y < img.height(); ++y)
            for (int x = 0; x < img.width(); ++x)
                if (qGray(img.pixel(x, y)) > 180 && qAlpha(img.pixel(x, y)) > 200)
                    ++light;
        return double(light) / (img.width() * img.height());
    }
};

} // namespace

TEST_F(VotesCastWindowTest, CountUpShowsTheCountCaptionBarAndBases)
{
    VotesCastWindow w(ctx);
    w.setIndicatorCount(3);
    for (int i = 0; i < 3; ++i) {
        w.setIndicatorColour(i, i == 2 ? 0x00FFFF : 0x00C000);
        w.setIndicatorVisible(i, true);
    }
    w.form().SetCaptionText("Votes Cast");
    w.form().SetCounterLabel("27", 24);
    w.setBar(1800 * 27 / 40, true);
    w.show();
    const QImage img = w.grab().toImage();
    EXPECT_EQ(img.size(), QSize(220, 132));
    EXPECT_GT(lightShare(img), 0.02);   // the number is drawn, and big
    EXPECT_TRUE(w.windowFlags() & Qt::WindowStaysOnTopHint);
    EXPECT_TRUE(w.windowFlags() & Qt::FramelessWindowHint);
    save(w, "vcast-count-up.png");
}

TEST_F(VotesCastWindowTest, CountDownShowsTheSecondsLeftAsTheClockRuns)
{
    ctx.vType = 1;
    ctx.TimeLeft = 8;
    VotesCastWindow w(ctx);
    ctx.vCast = &w.form();
    w.form().SetCaptionText("Time Left");
    PrepareVotesCastWindow(ctx);
    w.show();
    run.t.clock.advanceMs(20);
    EXPECT_EQ(w.form().CounterCaption(), "8");
    const QImage atEight = w.grab().toImage();
    save(w, "vcast-count-down.png");
    run.t.clock.advanceMs(3000);
    EXPECT_EQ(w.form().CounterCaption(), "5");
    EXPECT_NE(w.grab().toImage(), atEight);
    ctx.vCast = nullptr;
}

TEST_F(VotesCastWindowTest, AnAllRunDrawsItsProgressOverTheWholeStrip)
{
    Desktop().desktop = {0, 0, 1600, 900};
    VotesCastWindow w(ctx);
    w.show();   // loading shows the window; the strip still takes it over
    w.form().ShowAllRunProgress(4);
    w.form().SetProgressValue(2);
    EXPECT_EQ(w.size(), QSize(800, 13));
    const QImage img = w.grab().toImage();
    const QColor done = img.pixelColor(img.width() / 4, img.height() / 2);
    const QColor left = img.pixelColor(img.width() * 3 / 4, img.height() / 2);
    EXPECT_NE(done, left);
    // Half done: the edge of the bar lies in the middle.
    EXPECT_EQ(img.pixelColor(img.width() / 2 - 2, img.height() / 2), done);
    EXPECT_EQ(img.pixelColor(img.width() / 2 + 2, img.height() / 2), left);
}

TEST_F(VotesCastWindowTest, KeysReachTheFormAsKeyDownThenKeyPress)
{
    int exits = 0;
    ctx.terminator = [&](int) { ++exits; };   // never throw through Qt's event delivery
    VotesCastWindow w(ctx);
    w.show();
    QKeyEvent space(QEvent::KeyPress, Qt::Key_Space, Qt::NoModifier, " ");
    QCoreApplication::sendEvent(&w, &space);
    EXPECT_TRUE(w.form().clickArmed);   // a first click with no votes only arms
    EXPECT_EQ(w.form().lastKeyCode, 32);
    // The same key again: KeyDown drops the repeat, KeyPress still acts.
    QCoreApplication::sendEvent(&w, &space);
    EXPECT_FALSE(w.form().clickArmed);
    EXPECT_EQ(exits, 1);   // the second click closed the empty vote
}

TEST(KeyMapping, QtKeysToWindowSystemCodes)
{
    const std::pair<int, int> cases[] = {{Qt::Key_A, 65},        {Qt::Key_7, 55},       {Qt::Key_Escape, 27},
                                         {Qt::Key_F1, 112},      {Qt::Key_PageDown, 34}, {Qt::Key_Left, 37},
                                         {Qt::Key_Backspace, 8}, {Qt::Key_Return, 13},  {Qt::Key_F5, 0}};
    for (auto [qt, code] : cases)
        EXPECT_EQ(KeyDownCode(qt), code) << qt;
    EXPECT_EQ(ShiftMask(Qt::AltModifier), 4);
}

TEST(HelpWindow, CarriesTheKeyListAndItsTitle)
{
    HelpWindow h;
    EXPECT_EQ(h.windowTitle(), "tallix - Press Escape to close");
    const QStringList lines = HelpWindow::Lines();
    ASSERT_EQ(lines.size(), 12);
    EXPECT_EQ(lines.first(), "'r' = restart a vote");
    EXPECT_EQ(lines[10], "'ALT+K' = Renable Keypads for voting if you have pressed a number or G");
}

TEST_F(VotesCastWindowTest, LiveFormsLoadAndUnloadByName)
{
    ctx.keypadUniverse = 4;
    ResetVoteArrays(ctx);
    ctx.activeKeypads = QStringList{"1", "2", "3", "4"};
    ctx.votes(1) = "2";
    LiveWindowForms forms(ctx);
    forms.Load(FormName::vCast);
    ASSERT_NE(ctx.vCast, nullptr);
    EXPECT_EQ(ctx.vCast->CounterCaption(), "Please Wait");
    forms.Load(FormName::keypadsNotVoted);
    ASSERT_NE(forms.keypadsNotVoted(), nullptr);
    EXPECT_EQ(forms.keypadsNotVoted()->ListCaption(), "1 3 4 ");
    forms.Unload(FormName::vCast);
    EXPECT_EQ(ctx.vCast, nullptr);
    EXPECT_FALSE(forms.IsLoaded(FormName::vCast));
    EXPECT_TRUE(forms.IsLoaded(FormName::keypadsNotVoted));
}
