#include "foundation/clock.h"
#include "foundation/event_pump.h"

#include <gtest/gtest.h>

#include <stdexcept>

using namespace tallix;

TEST(ManualClock, TimersFireInTimeOrderAsOftenAsTheirIntervalFits)
{
    ManualClock clock;
    std::vector<std::string> fired;
    auto fast = clock.createTimer();
    auto slow = clock.createTimer();
    fast->setInterval(10);
    slow->setInterval(25);
    fast->onTick([&] { fired.push_back("f" + std::to_string(clock.elapsedMs())); });
    slow->onTick([&] { fired.push_back("s" + std::to_string(clock.elapsedMs())); });
    fast->setEnabled(true);
    slow->setEnabled(true);
    clock.advanceMs(30);
    EXPECT_EQ(fired, (std::vector<std::string>{"f10", "f20", "s25", "f30"}));
}

TEST(ManualClock, AHandlerThatDisablesItsTimerStopsIt)
{
    ManualClock clock;
    int ticks = 0;
    auto t = clock.createTimer();
    t->setInterval(10);
    t->onTick([&] {
        if (++ticks == 3)
            t->setEnabled(false);
    });
    t->setEnabled(true);
    clock.advanceSeconds(30);
    EXPECT_EQ(ticks, 3);
    EXPECT_EQ(clock.elapsedMs(), 30000);
}

TEST(ManualClock, ReportsSecondsSinceMidnightAndTheCounter)
{
    ManualClock clock(QDateTime(QDate(2026, 1, 2), QTime(23, 59, 59, 500)));
    EXPECT_DOUBLE_EQ(clock.secondsSinceMidnight(), 86399.5);
    clock.advanceMs(600);
    EXPECT_NEAR(clock.secondsSinceMidnight(), 0.1, 1e-9); // the midnight jump
    EXPECT_EQ(clock.perfCounter() / clock.perfFrequency(), 0);
    clock.setCounterAvailable(false);
    EXPECT_EQ(clock.perfFrequency(), 0);
}

TEST(ManualEventPump, AWaitMovesTheClockAndRunsTheHook)
{
    ManualClock clock;
    ManualEventPump pump(clock, 100);
    int hooks = 0;
    pump.setHook([&] { ++hooks; });
    pump.WaitForEvents(5);
    pump.DoEvents();
    EXPECT_EQ(clock.elapsedMs(), 6);
    EXPECT_EQ(hooks, 2);
}

TEST(ManualEventPump, AWaitThatNeverEndsFailsInsteadOfHanging)
{
    ManualClock clock;
    ManualEventPump pump(clock, 50);
    EXPECT_THROW(
        for (;;) pump.WaitForEvents(10), std::runtime_error);
}
