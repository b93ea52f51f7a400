// Random votes for trying a slide without an audience: choices, numbers and texts.

#include "support/test_context.h"
#include "vote/random_votes.h"

#include <gtest/gtest.h>

using namespace tallix;
using tallix::testing::TestRun;

namespace {

TEST(RandomValue, FitsAChoiceToTheOptions)
{
    TestRun run;
    RunContext& ctx = run.ctx;
    ctx.optionCount = 4;
    ctx.controllerVoteType = "9";
    struct Case {
        short startFrom;
        double draw;
        const char* value;
    };
    const Case cases[] = {
        {1, 0.0, "4"},    // a draw of 0 gives the top option
        {1, 0.5, "2"},    // 0.5 of 3, rounded to even
        {1, 0.99, "4"},
        {0, 0.01, "0"},   // from 0, a draw near 0 is option 0
        {0, 0.99, "3"},   // options 0 to 3
        {1, 3, "3"},      // a whole draw is the option itself
    };
    for (const Case& c : cases) {
        ctx.startFrom = c.startFrom;
        EXPECT_EQ(RandomValue(ctx, c.draw), c.value) << c.startFrom << " " << c.draw;
    }
}

TEST(RandomValue, GivesATypedNumberAWholeNumberForTheNumberCode)
{
    TestRun run;
    RunContext& ctx = run.ctx;
    ctx.FixedFree = 1;
    ctx.Limits = 3;
    ctx.controllerVoteType = "99";
    for (int i = 0; i < 20; ++i) {
        bool whole = false;
        const double v = RandomValue(ctx, 0.5).toDouble(&whole);
        EXPECT_TRUE(whole);
        EXPECT_EQ(v, std::trunc(v));
        EXPECT_LT(v, 1000);
    }
}

TEST(RandomTexts, AreTheLinesOfTheUsersFile)
{
    struct Case {
        const char* what;
        QByteArray file;   // empty name: no file at all
        bool present;
        QStringList texts;
    };
    const Case cases[] = {
        {"CR LF", "alpha\r\nbeta\r\n", true, {"alpha", "beta"}},
        {"LF alone", "alpha\nbeta", true, {"alpha", "beta"}},
        {"one line", "only\r\n", true, {"only"}},
        {"blank file", "", true, {""}},
        {"a blank line inside", "a\r\n\r\nb", true, {"a", "", "b"}},
        {"no file", "", false, {"Text 1", "Text 2", "Text 3", "Text 4", "Text 5", "Text 6", "Text 7", "Text 8",
                               "Text 9", "Text 10"}},
    };
    for (const Case& c : cases) {
        TestRun run;
        RunContext& ctx = run.ctx;
        if (c.present)
            run.t.write(run.t.path("appdata/tallix/rndTextVotes.txt"), c.file);
        LoadRandomTexts(ctx);
        EXPECT_EQ(ctx.rndTextList, c.texts) << c.what;
    }
}

TEST(RandomTexts, AFileOfOneLineGivesItToEveryKeypad)
{
    TestRun run;
    RunContext& ctx = run.ctx;
    run.t.write(run.t.path("appdata/tallix/rndTextVotes.txt"), "\xEF\xBB\xBF" "caf\xC3\xA9\r\n");
    ctx.FixedFree = 1;
    ctx.FractionalJoltTEXT = 1;
    ctx.controllerVoteType = "7";
    for (double draw : {0.0, 0.4, 0.99})
        EXPECT_EQ(RandomValue(ctx, draw), QString::fromUtf8("café")) << draw;
}

} // namespace
