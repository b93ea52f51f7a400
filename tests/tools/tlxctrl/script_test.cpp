#include "vote_script.h"

#include <gtest/gtest.h>

using namespace tallix;
using Kind = ScriptEntry::Kind;

TEST(TlxctrlScript, LinesBecomeTimedEntriesInTimeOrder)
{
    const ScriptResult r = ParseVoteScript("# header\n"
                                           "\n"
                                           "2 [3;1],\\r\\n\n"
                                           "0.25 [1;2],[2;4],\\r\\n\n"
                                           "  2\tBASETYPE=KBOARD\\r\\nMAXKEYPADS=5\\r\\n\n"
                                           "1    !baseerror 2 Base 2 lost contact\n"
                                           "1.5 !allowedvotes 1,2\n"
                                           "3 \\!literal \\\\ with trailing blank \n"
                                           "9 !die\n");
    ASSERT_TRUE(r.ok()) << r.errors.join('\n').toStdString();
    ASSERT_EQ(r.entries.size(), 7);

    struct Expect {
        qint64 ms;
        Kind kind;
        QString text;
        int line;
    } expected[] = {
        {250, Kind::Text, "[1;2],[2;4],\r\n", 4},
        {1000, Kind::BaseError, "Base 2 lost contact", 6},
        {1500, Kind::AllowedVotes, "1,2", 7},
        {2000, Kind::Text, "[3;1],\r\n", 3},                       // same time: file order kept
        {2000, Kind::Text, "BASETYPE=KBOARD\r\nMAXKEYPADS=5\r\n", 5},
        {3000, Kind::Text, "!literal \\ with trailing blank ", 8},
        {9000, Kind::Die, "", 9},
    };
    for (int i = 0; i < 7; ++i) {
        SCOPED_TRACE(i);
        EXPECT_EQ(r.entries[i].atMs, expected[i].ms);
        EXPECT_EQ(r.entries[i].kind, expected[i].kind);
        EXPECT_EQ(r.entries[i].text, expected[i].text);
        EXPECT_EQ(r.entries[i].line, expected[i].line);
    }
    EXPECT_EQ(r.entries[1].base, 2);
}

TEST(TlxctrlScript, AnAtPrefixBindsALineToOneStartVote)
{
    struct Case {
        const char* line;
        int opening;
        qint64 ms;
        Kind kind;
        const char* text;
    } cases[] = {
        {"0.5 [1;2],", 0, 500, Kind::Text, "[1;2],"},
        {"@2 0.5 [12;3],\\r\\n", 2, 500, Kind::Text, "[12;3],\r\n"},
        {"  @10\t1.25\t[4;1], ", 10, 1250, Kind::Text, "[4;1], "},
        {"@1 3 !die", 1, 3000, Kind::Die, ""},
        {"@3 0 !allowedvotes 1,2", 3, 0, Kind::AllowedVotes, "1,2"},
        {"0.5 @2 is text", 0, 500, Kind::Text, "@2 is text"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.line);
        const ScriptResult r = ParseVoteScript(QString(c.line) + "\n");
        ASSERT_TRUE(r.ok()) << r.errors.join('\n').toStdString();
        ASSERT_EQ(r.entries.size(), 1);
        const ScriptEntry& e = r.entries[0];
        EXPECT_EQ(e.opening, c.opening);
        EXPECT_EQ(e.atMs, c.ms);
        EXPECT_EQ(e.kind, c.kind);
        EXPECT_EQ(e.text, c.text);
    }
}

TEST(TlxctrlScript, BadLinesAreNamedAndTheRestStillParses)
{
    struct Case {
        const char* line;
        const char* reason;
    } cases[] = {
        {"soon [1;2],", "\"soon\" is not a time"},
        {"-1 [1;2],", "\"-1\" is not a time"},
        {"nan [1;2],", "\"nan\" is not a time"},
        {"5", "no text after the time"},
        {"1 [1;2],\\x", "unknown escape \\x"},
        {"1 [1;2],\\", "lone \\"},
        {"1 !explode", "unknown directive !explode"},
        {"1 !baseerror x gone", "!baseerror needs a base index"},
        {"@0 1 [1;2],", "\"@0\" is not a StartVote number"},
        {"@-1 1 [1;2],", "\"@-1\" is not a StartVote number"},
        {"@x 1 [1;2],", "\"@x\" is not a StartVote number"},
        {"@ 1 [1;2],", "\"@\" is not a StartVote number"},
        {"@2x 1 [1;2],", "\"@2x\" is not a StartVote number"},
        {"@2", "no time after @2"},
        {"@2   ", "no time after @2"},
        {"@2 0.5", "no text after the time"},
        {"@2 soon [1;2],", "\"soon\" is not a time"},
    };
    for (const auto& c : cases) {
        const ScriptResult r = ParseVoteScript(QString("0 [9;1],\\r\\n\n") + c.line + "\n", "s.txt");
        ASSERT_EQ(r.errors.size(), 1) << c.line;
        EXPECT_TRUE(r.errors[0].startsWith("s.txt line 2: ")) << r.errors[0].toStdString();
        EXPECT_TRUE(r.errors[0].contains(c.reason)) << r.errors[0].toStdString();
        EXPECT_EQ(r.entries.size(), 1) << c.line;
    }
}
