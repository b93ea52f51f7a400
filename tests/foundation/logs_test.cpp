#include "foundation/logs.h"
#include "support/test_services.h"

#include <gtest/gtest.h>

#include <QRegularExpression>

using namespace tallix;
using tallix::testing::TestServices;

namespace {

TEST(FormatFixed, PadsAndWidensButNeverCuts)
{
    EXPECT_EQ(FormatFixed(0, 3, 3), "000.000");
    EXPECT_EQ(FormatFixed(0.0315, 3, 3), "000.032");
    EXPECT_EQ(FormatFixed(1234.5, 3, 3), "1234.500");
    EXPECT_EQ(FormatFixed(12.734, 6, 3), "000012.734");
    EXPECT_EQ(FormatFixed(-0.5, 3, 3), "-000.500");
}

TEST(WriteDebugLog, OffAndNotForcedTouchesNothing)
{
    TestServices t;
    t.s.ini.logEventsToFile = false;
    WriteDebugLog(t.s, 0, "x", "M", "P", 0);
    EXPECT_TRUE(QDir(t.path("temp")).isEmpty());
    EXPECT_EQ(t.s.logTiming.FirstCounter, 0);
}

TEST(WriteDebugLog, WritesTheExactLineFormat)
{
    TestServices t;
    t.clock.advanceMs(5); // the first line sets the counter base
    WriteDebugLog(t.s, 0.031f, "", "Common_XML", "GetPPTShapes", 1);
    t.clock.advanceMs(12729);
    WriteDebugLog(t.s, 0, "*** BEING VOTE APP***", "Vote", "Main", 1);
    const QStringList lines = TestServices::read(t.path("temp/tlx_debug_2026_11_16.log")).split("\r\n");
    ASSERT_GE(lines.size(), 2);
    EXPECT_EQ(lines[0], "[16/11/26] [02:35:19.046] | 000000.000 |     vote.exe (4.2.07) | 000.031 | [Common_XML] | "
                        "[GetPPTShapes] | ");
    EXPECT_EQ(lines[1], "[16/11/26] [02:35:31.775] | 000012.729 |     vote.exe (4.2.07) | 000.000 | [Vote] | [Main] | "
                        "*** BEING VOTE APP***");
}

TEST(WriteDebugLog, LongNamesAreNotCutAndALostCounterDoesNotFail)
{
    TestServices t;
    t.s.ini.logEventsToFile = true;
    t.s.app.exeName = "tallix-vote-long";
    t.clock.setCounterAvailable(false);
    WriteDebugLog(t.s, 1234.5f, "t", "M", "P");
    const QString log = TestServices::read(t.path("temp/tlx_debug_2026_11_16.log"));
    EXPECT_TRUE(log.contains("| tallix-vote-long.exe (4.2.07) | 1234.500 |")) << log.toStdString();
    EXPECT_EQ(t.s.logTiming.FrequencyTicks, 1);
}

TEST(WriteDebugLog, ALineAfterMidnightGoesToTheNextDaysFile)
{
    TestServices t;
    t.clock.setNow(QDateTime(QDate(2026, 11, 16), QTime(23, 59, 59)));
    WriteDebugLog(t.s, 0, "before", "M", "P", 1);
    t.clock.advanceSeconds(2);
    WriteDebugLog(t.s, 0, "after", "M", "P", 1);
    EXPECT_TRUE(TestServices::read(t.path("temp/tlx_debug_2026_11_16.log")).contains("before"));
    const QString next = TestServices::read(t.path("temp/tlx_debug_2026_11_17.log"));
    EXPECT_TRUE(next.contains("after"));
    // The time base was taken once, so the hours run on past 24 instead of wrapping.
    EXPECT_TRUE(next.contains("[24:00:01.000]")) << next.toStdString();
}

TEST(WriteVoteDataLog, UpperCasesTheTagAndAlwaysWrites)
{
    TestServices t;
    t.s.ini.logEventsToFile = false;
    WriteVoteDataLog(t.s, "votes saved to slide", "a,b");
    EXPECT_EQ(TestServices::read(t.path("temp/tlx_vote_data_debug_2026_11_16.log")),
              "[16/11/26] [02:35:19.041] | VOTES SAVED TO SLIDE|a,b\r\n");
}

TEST(ChartLog, WritesUnderTallixAndFailsSilentlyWithoutTheFolder)
{
    TestServices t;
    debug_log(t.s, "no folder");
    EXPECT_FALSE(QFile::exists(t.path("temp/tallix/debug_log.txt")));
    QDir(t.path("temp")).mkpath("tallix");
    debug_log(t.s, "stage 1");
    EXPECT_EQ(TestServices::read(t.path("temp/tallix/debug_log.txt")), "[16/11/2026 02:35:19] stage 1\r\n");
}

} // namespace
