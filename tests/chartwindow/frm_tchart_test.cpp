// The result window: where it lies, the presenter's keys, clicks and pointer, its timers.
#include "chart_fixture.h"

#include "chartwindow/after_result.h"

#include <gtest/gtest.h>

using namespace tallix;
using namespace tallix::testing;

namespace {

FrmTChart& Shown(ChartRun& r)
{
    r.setCounts(2, {5, 12, 3});
    FrmTChart& f = r.display();
    f.ShowMe();
    return f;
}

TEST(FrmTChart, LiesOverTheChartAreaOfTheShow)
{
    ChartRun r;
    r.deck->config().showWindowRect = QRect(100, 50, 960, 540);
    FrmTChart& f = Shown(r);
    EXPECT_EQ(f.geometry(), QRect(100 + 96, 50 + 108, 576, 378));
    EXPECT_EQ(f.TChart(0).width(), 576);
    EXPECT_TRUE(f.windowFlags().testFlag(Qt::WindowStaysOnTopHint));
    EXPECT_TRUE(f.windowFlags().testFlag(Qt::FramelessWindowHint));
}

TEST(FrmTChart, AChartAreaPastTheShowIsClippedToIt)
{
    ChartRun r;
    r.ctx.vArea(0).Left = 0.8f;
    r.ctx.vArea(0).Top = -0.1f;
    FrmTChart& f = Shown(r);
    EXPECT_EQ(f.geometry(), QRect(768, 0, 192, 324));
}

TEST(FrmTChart, KeysThatEndTheResultAreStored)
{
    struct Row {
        int key, shift, pending, pendingShift;
    };
    const Row rows[] = {
        {27, 0, 27, 0},  {'Q', 0, 'Q', 0}, {'N', 0, 'N', 0}, {32, 0, 32, 0},   {39, 0, 39, 0},
        {40, 0, 40, 0},  {34, 0, 34, 0},   {'Q', 2, 'Q', 2}, {'G', 2, 'G', 2}, {'G', 0, 0, 0},
        {'X', 0, 0, 0},  {'n', 0, 'N', 0},
    };
    for (const Row& row : rows) {
        ChartRun r;
        FrmTChart& f = Shown(r);
        f.OnKeyDown(0, row.key, row.shift);
        EXPECT_EQ(f.PendingKey(), row.pending) << row.key << "/" << row.shift;
        EXPECT_EQ(f.PendingShift(), row.pendingShift) << row.key << "/" << row.shift;
        // Storing a key leaves the chart up for the dispatcher.
        EXPECT_TRUE(f.IsOnView());
    }
}

TEST(FrmTChart, RestartKeysAndExternalRestartRunMainAgain)
{
    for (int key : {int('R'), int('P'), 8, 37, 38, 33, -1}) {
        ChartRun r;
        FrmTChart& f = Shown(r);
        int runs = 0;
        f.gotoMainSub = [&] { ++runs; };
        if (key < 0)
            f.ExternalRestart();
        else
            f.OnKeyDown(0, key, 0);
        r.run.t.clock.advanceMs(key < 0 ? 500 : 0);
        EXPECT_EQ(runs, 0);
        r.run.t.clock.advanceMs(20);
        EXPECT_EQ(runs, 1) << key;
        EXPECT_TRUE(r.ctx.internalRestart);
        r.run.t.clock.advanceMs(1000);
        EXPECT_EQ(runs, 1) << "the timer switches itself off";
    }
}

TEST(FrmTChart, SwitchViewOnlyOnASeriesVoteAndNotTwiceInAQuarterSecond)
{
    ChartRun r;
    FrmTChart& f = Shown(r);
    f.TChart.Load(1);
    r.ctx.vType = 0;
    f.OnKeyDown(0, 'S', 0);
    EXPECT_TRUE(f.TChart(0).Visible());

    r.ctx.vType = 2;
    r.run.t.clock.advanceMs(300);
    f.OnKeyDown(0, 'S', 0);
    EXPECT_FALSE(f.TChart(0).Visible());
    EXPECT_TRUE(f.TChart(1).Visible());
    r.run.t.clock.advanceMs(100);
    f.OnKeyDown(0, 'S', 0);
    EXPECT_TRUE(f.TChart(1).Visible()) << "second press 0.1 s later does nothing";
}

TEST(FrmTChart, ClickShowsAWaitingTickFirstThenEnds)
{
    ChartRun r;
    r.ctx.haveTick = 1;
    FrmTChart& f = Shown(r);
    int closes = 0;
    f.closeEverything = [&] { ++closes; };
    f.Form_MouseDown(2);
    EXPECT_EQ(closes, 0) << "only the left button counts";
    f.Form_MouseDown(1);
    EXPECT_EQ(closes, 0);
    EXPECT_TRUE(f.tickShown);
    f.Form_MouseDown(1);
    EXPECT_EQ(closes, 1);
}

TEST(FrmTChart, PointerWakesOnlyPastTremorOnARatingChart)
{
    ChartRun r;
    FrmTChart& f = Shown(r);
    r.ctx.GraphType = 7;
    r.run.t.clock.advanceMs(2000);
    ASSERT_FALSE(f.tmrHideCursor->enabled());
    EXPECT_EQ(f.cursor().shape(), Qt::BlankCursor);
    f.OnMouseMove(0, 0, 100, 100);
    f.OnMouseMove(0, 0, 120, 100);   // 400: stays hidden
    EXPECT_FALSE(f.tmrHideCursor->enabled());
    f.OnMouseMove(0, 0, 100, 129);   // 841: shows
    EXPECT_TRUE(f.tmrHideCursor->enabled());
    EXPECT_NE(f.cursor().shape(), Qt::BlankCursor);
}

TEST(FrmTChart, UnloadStopsTheTimersAndFadesOut)
{
    ChartRun r;
    FrmTChart& f = Shown(r);
    f.Form_Unload();
    EXPECT_FALSE(f.tmrHideCursor->enabled());
    EXPECT_FALSE(f.tmrKeepFocus->enabled());
    EXPECT_EQ(f.Alpha(), 0);
}

TEST(AfterResult, TheNextStoredKeyEndsTheRunAndARestartDoesNot)
{
    {
        ChartRun r;
        FrmTChart& f = Shown(r);
        r.ctx.voteRunning = true;
        r.ctx.terminator = [](int c) { throw ProcessExit{c}; };
        int pumps = 0;
        r.run.t.pump.setHook([&] {
            if (++pumps == 3)
                f.OnKeyDown(0, 32, 0);
        });
        EXPECT_THROW(AwaitPresenterAfterResult(r.ctx), ProcessExit);
        EXPECT_FALSE(r.ctx.voteRunning);
        EXPECT_EQ(f.PendingKey(), 0);
        r.run.t.pump.setHook({});
    }
    {
        ChartRun r;
        Shown(r);
        r.ctx.voteRunning = true;
        r.run.t.pump.setHook([&] {
            if (r.charts->form())
                r.charts->UnloadForm();
        });
        AwaitPresenterAfterResult(r.ctx);
        EXPECT_TRUE(r.ctx.voteRunning);
        EXPECT_EQ(r.ctx.FrmTChart, nullptr);
        r.run.t.pump.setHook({});
    }
}

} // namespace
