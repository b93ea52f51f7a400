#include "controller/comms.h"
#include "controller/controller_link.h"
#include "foundation/host.h"
#include "host/deck_host.h"
#include "results/common_io.h"
#include "support/qt_print.h"
#include "support/test_context.h"

#include <gtest/gtest.h>

using namespace tallix;
using tallix::testing::TestRun;

namespace {

class CommonIo : public ::testing::Test {
protected:
    TestRun run;
    RunContext& ctx = run.ctx;
    host::MemoryHost ppt{5};
    RecordingControllerLink link;
    Comms comms{ctx, link};

    CommonIo()
    {
        ctx.oPPT = &ppt;
        ctx.oPres = ppt.ActivePresentation();
        ctx.comms = &comms;
    }
    host::Tags* tags() { return ctx.oPres->GetTags(); }
};

struct ActiveCase {
    const char* tag;
    QStringList expected;
};

class ActiveKeypadLists : public CommonIo, public ::testing::WithParamInterface<ActiveCase> {};

TEST_P(ActiveKeypadLists, ReadAsTheTagHasThem)
{
    tags()->Add("ActiveKeypads", GetParam().tag);
    ReadActiveKeypads(ctx);
    EXPECT_EQ(ctx.activeKeypads, GetParam().expected) << GetParam().tag;
}

INSTANTIATE_TEST_SUITE_P(Tags, ActiveKeypadLists,
                         ::testing::Values(ActiveCase{",1,2,", {"1", "2"}}, ActiveCase{"1, 2", {"1"}},
                                           ActiveCase{"", {""}}, ActiveCase{",,", {""}}, ActiveCase{" 3", {""}},
                                           ActiveCase{"7", {"7"}}));

TEST_F(CommonIo, WritingTheRespondedKeypadsNarrowsTheRoomAndTellsTheController)
{
    ctx.respondedKeypads = {"3", "5"};
    short all = 0;
    WriteActiveKeypads(ctx, all);
    EXPECT_EQ(tags()->Item("ActiveKeypads"), "3,5");
    EXPECT_EQ(ctx.activeKeypads, QStringList({"3", "5"}));
    ASSERT_EQ(link.sent, QStringList({"ReadActiveKeypads"}));
    EXPECT_EQ(link.extras[0].value("activeKeypads").toString(), "3,5");
}

TEST_F(CommonIo, RestoringAllKeypadsRereadsTheListAndAsksForTheTable)
{
    ctx.allKeypadsText = "1,2,3,";
    short all = 1;
    WriteActiveKeypads(ctx, all);
    EXPECT_EQ(tags()->Item("ActiveKeypads"), "1,2,3");
    EXPECT_EQ(ctx.activeKeypads, QStringList({"1", "2", "3"}));
    EXPECT_EQ(link.sent, QStringList({"ReadActiveKeypads", "BaseInfo"}));
}

TEST_F(CommonIo, NothingRespondedAndNoFlagWritesNothing)
{
    short all = 0;
    WriteActiveKeypads(ctx, all);
    EXPECT_TRUE(tags()->Item("ActiveKeypads").isEmpty());
    EXPECT_TRUE(link.sent.isEmpty());
}

TEST_F(CommonIo, TheFirstReasonStandsAndComesFirst)
{
    tags()->Add("tlxActivity", "1");
    ctx.app.processId = 4242;
    RecordVoteEnd(ctx, "Unable to load vote info");
    RecordVoteEnd(ctx, "Vote finished");
    EXPECT_EQ(tags()->Item("tlxVoteTerminated"), "Unable to load vote info\r\n4242");
    EXPECT_EQ(ReadVoteEnd(ctx), "Unable to load vote info");
    EXPECT_TRUE(tags()->Item("tlxActivity").isEmpty());
}

TEST_F(CommonIo, CurrentSlideComesFromTheTagWhichIsConsumed)
{
    tags()->Add("tlxCurrentSlide", "4");
    EXPECT_EQ(readCurrentSlide(ctx), 4);
    EXPECT_TRUE(tags()->Item("tlxCurrentSlide").isEmpty());
    EXPECT_EQ(readCurrentSlide(ctx), 4); // no tag: the slide it had stands
    ctx.makeMode = true;
    ctx.arg2 = "2";
    EXPECT_EQ(readCurrentSlide(ctx), 2);
}

TEST_F(CommonIo, WithNothingToGoOnTheViewsSlideIsTaken)
{
    ctx.currentSlide = 0;
    EXPECT_EQ(readCurrentSlide(ctx), 1);
}

TEST(FileTitle, IsThePartAfterTheLastSeparator)
{
    EXPECT_EQ(FileTitle("C:\\a\\b.txt"), "b.txt");
    EXPECT_EQ(FileTitle("/tmp/x/y.png"), "y.png");
    EXPECT_EQ(FileTitle("plain"), "plain");
}

} // namespace
