#include "live_fixture.h"

#include "vote/graph_runners.h"
#include "livewindow/window_placement.h"
#include "vote/vote_close.h"
#include "vote/vote_main.h"
#include "vote/votes_cast_boxes.h"

using namespace tallix;
using tallix::testing::LiveVoteTest;

namespace {

// Presses keys on the votes-cast window at chosen pumps of a runner's wait loop.
void scriptKeys(LiveVoteTest* , ManualEventPump& pump, vCastForm& form, std::vector<std::pair<qint64, int>> keys)
{
    pump.setHook([&pump, &form, keys] {
        for (auto [at, key] : keys)
            if (pump.pumps() == at)
                form.KeyInput(key);
    });
}

} // namespace

TEST_F(LiveVoteTest, CountUpOnTheKeyboardEndsBySpaceAndDrawsTheResult)
{
    LoadVotesCastBoxes(ctx);
    PrepareVotesCastWindow(ctx);
    EXPECT_EQ(view().caption, "Votes Cast");
    scriptKeys(this, run.t.pump, vcast(), {{5, '2'}, {10, '3'}, {15, ' '}});
    EXPECT_TRUE(endsProcess([&] { DoCountUpGraphVote(ctx); }));
    EXPECT_EQ(vote(1), "2");
    EXPECT_EQ(vote(2), "3");
    EXPECT_EQ(charts.charts, 1);
    EXPECT_EQ(result.placed, std::vector<short>{-1});
    EXPECT_GE(commits, 1);
    EXPECT_EQ(exits, 1);
    EXPECT_TRUE(sent("DeleteTask=Vote,Voting...\r\nEndVote"));
}

TEST_F(LiveVoteTest, CountDownOnTheKeyboardEndsWhenTheTimeIsUp)
{
    ctx.vType = 1;
    ctx.TimeLeft = 3;
    LoadVotesCastBoxes(ctx);
    PrepareVotesCastWindow(ctx);
    EXPECT_EQ(view().caption, "Time Left");
    run.t.pump.setHook([this] {
        if (run.t.pump.pumps() == 20)
            vcast().KeyInput('4');
    });
    const double start = run.t.clock.secondsSinceMidnight();
    EXPECT_TRUE(endsProcess([&] { DoCountDownGraphVote(ctx); }));
    const double took = run.t.clock.secondsSinceMidnight() - start;
    EXPECT_GE(took, 3.0);
    EXPECT_LT(took, 3.5);
    EXPECT_EQ(vote(1), "4");
    EXPECT_EQ(ctx.countDownExpired, 2);
    EXPECT_EQ(charts.charts, 1);
}

TEST_F(LiveVoteTest, ManualEndCountDownStaysOpenPastTheTime)
{
    ctx.vType = 1;
    ctx.TimeLeft = 1;
    ctx.CountDownManualEnd = true;
    PrepareVotesCastWindow(ctx);
    run.t.pump.setHook([this] {
        if (run.t.pump.pumps() == 10)
            vcast().KeyInput('1');
        if (run.t.pump.pumps() == 400)
            vcast().KeyInput(' ');
    });
    EXPECT_TRUE(endsProcess([&] { DoCountDownGraphVote(ctx); }));
    EXPECT_GE(run.t.pump.pumps(), 400);
    EXPECT_EQ(charts.charts, 1);
}

TEST_F(LiveVoteTest, AVoteWithNoVotesEndsWithoutAChartOnTheSecondClick)
{
    PrepareVotesCastWindow(ctx);
    scriptKeys(this, run.t.pump, vcast(), {{5, ' '}, {10, ' '}});
    EXPECT_TRUE(endsProcess([&] { DoCountUpGraphVote(ctx); }));
    EXPECT_EQ(charts.charts, 0);
    EXPECT_TRUE(result.placed.empty());
    EXPECT_EQ(ReadVoteEnd(ctx), "Vote finished");
}

TEST_F(LiveVoteTest, NoVotesInAPerTextCountUpReturnsWithoutShutdown)
{
    ctx.vType = 3;
    EXPECT_FALSE(endsProcess([&] { EndNormalVote(ctx); }));
    EXPECT_EQ(ReadVoteEnd(ctx), "Vote finished");
}

TEST_F(LiveVoteTest, EscapeDuringAVoteEndsItWithNothingSaved)
{
    PrepareVotesCastWindow(ctx);
    scriptKeys(this, run.t.pump, vcast(), {{5, '1'}, {10, 27}});
    EXPECT_TRUE(endsProcess([&] { DoCountUpGraphVote(ctx); }));
    EXPECT_EQ(charts.charts, 0);
    EXPECT_EQ(ReadVoteEnd(ctx), "Vote finished");
    EXPECT_FALSE(ctx.AutoAdvance);
    EXPECT_TRUE(ctx.oPres->GetSlides()->Item(2)->GetTags()->Item("TLXVOTES").isEmpty());
}

TEST_F(LiveVoteTest, HardwareStartFailureOffersRetryOrCancel)
{
    ctx.BaseType = "HW";
    ctx.makeMode = true;   // a controller that cannot start the vote
    run.t.dialogs.answer(MsgBoxResult::Cancel);
    EXPECT_TRUE(endsProcess([&] { DoCountUpGraphVote(ctx); }));
    ASSERT_FALSE(run.t.dialogs.shown.empty());
    EXPECT_EQ(run.t.dialogs.shown.back().text, "Unable to start vote, retry or cancel and check keypad setup");
    EXPECT_EQ(run.t.dialogs.shown.back().style, 21);
}

TEST_F(LiveVoteTest, AutoAdvanceWaitsThenMovesTheShowOn)
{
    ctx.AutoAdvance = true;
    ctx.AutoAdvanceTime = 2;
    const double start = run.t.clock.secondsSinceMidnight();
    EXPECT_TRUE(endsProcess([&] { FullShutDown(ctx); }));
    EXPECT_GE(run.t.clock.secondsSinceMidnight() - start, 2.0);
    EXPECT_TRUE(sent("NEXTSLIDE,2"));
    EXPECT_FALSE(forms.IsLoaded(FormName::vCast));

    ctx.AutoAdvanceTime = 0;
    const double again = run.t.clock.secondsSinceMidnight();
    EXPECT_TRUE(endsProcess([&] { FullShutDown(ctx); }));
    EXPECT_LT(run.t.clock.secondsSinceMidnight() - again, 0.1);
}

TEST_F(LiveVoteTest, AnEndAskedForDuringTheAutoAdvanceWaitDoesNotRunTheShutdownTwice)
{
    ctx.AutoAdvance = true;
    ctx.AutoAdvanceTime = 2;
    const double start = run.t.clock.secondsSinceMidnight();
    bool clicked = false;
    // The presenter clicks the result a second into the wait.
    run.t.pump.setHook([&] {
        if (!clicked && run.t.clock.secondsSinceMidnight() - start > 1) {
            clicked = true;
            FullShutDown(ctx);
        }
    });
    EXPECT_TRUE(endsProcess([&] { FullShutDown(ctx); }));
    EXPECT_TRUE(clicked);
    EXPECT_EQ(exits, 1);
    EXPECT_EQ(link.sent.count("NEXTSLIDE,2"), 1);
    EXPECT_LT(run.t.clock.secondsSinceMidnight() - start, 2.5) << "waited twice";
    EXPECT_FALSE(ctx.shuttingDown);
}

TEST_F(LiveVoteTest, AllRunChainsTheNextSlideInsteadOfEnding)
{
    ctx.arg5 = "ALL";
    ctx.arg4 = "1";
    // Slides 2 and 3 hold no question, so each pass of Main ends at once and chains the
    // next; only the last slide's pass ends the process.
    EXPECT_TRUE(endsProcess([&] { FullShutDown(ctx); }));
    EXPECT_EQ(ctx.arg4, "3");
    EXPECT_EQ(vcast().progressValue(), 3);
}

TEST_F(LiveVoteTest, CloseVoteZeroesTheCountBeforeTheResultIsMade)
{
    ctx.votes(0) = "1";
    ctx.votesCast = 1;
    ctx.voteReceived = true;
    EXPECT_TRUE(endsProcess([&] { closeVote(ctx); }));
    EXPECT_EQ(ctx.votesCast, 0);
    EXPECT_EQ(ctx.voteEnded, 1);
    EXPECT_EQ(charts.charts, 1);
}

TEST_F(LiveVoteTest, RandomVotesKeyFillsEveryKeypadAndCloses)
{
    ctx.votes(2) = "3";   // a keypad that voted keeps its vote
    EXPECT_TRUE(endsProcess([&] { vcast().KeyInput('g'); }));
    for (int k = 1; k <= ctx.keypadUniverse; ++k) {
        const double v = ctx.votes(k - 1).toDouble();
        EXPECT_GE(v, 1) << k;
        EXPECT_LE(v, ctx.optionCount) << k;
    }
    EXPECT_EQ(vote(3), "3");
    EXPECT_EQ(charts.charts, 1);
}

TEST_F(LiveVoteTest, RevoteWithABrokenQuestionEndsWithItsReason)
{
    ctx.oPres->GetSlides()->Item(2)->GetTags()->Add("TLXVOTE", "<tlxfile><unclosed>");
    EXPECT_TRUE(endsProcess([&] { vcast().KeyInput('r'); }));
    EXPECT_EQ(forms.unloads[FormName::vCast], 1);
    ASSERT_FALSE(run.t.dialogs.shown.empty());
    EXPECT_TRUE(run.t.dialogs.shown.back().text.contains("Error loading vote information"));
    EXPECT_EQ(ReadVoteEnd(ctx), "Unable to load vote info");
}

TEST_F(LiveVoteTest, ShutdownLetsTheAddInPrepareTheNextSlideEvenPastTheLast)
{
    std::vector<std::pair<QString, QString>> ran;
    ppt.config().runMacro = [&](const QString& m, const QString& a) { ran.emplace_back(m, a); };
    EXPECT_TRUE(endsProcess([&] { FullShutDown(ctx); }));
    ppt.SlideShowWindows(1)->GetView()->GotoSlide(3);
    EXPECT_TRUE(endsProcess([&] { FullShutDown(ctx); }));
    const std::vector<std::pair<QString, QString>> expected = {{"PreLoadVoteConfig", "3"}, {"PreLoadVoteConfig", "4"}};
    EXPECT_EQ(ran, expected);
}

TEST_F(LiveVoteTest, AutoAdvanceMovesOnFromTheResultWithoutAKey)
{
    ctx.AutoAdvance = true;
    ctx.AutoAdvanceTime = 3;
    result.key = 0;   // the presenter touches nothing
    ctx.votes(0) = "2";
    ctx.voteReceived = true;
    const double start = run.t.clock.secondsSinceMidnight();
    run.t.pump.setHook([&] {
        if (run.t.clock.secondsSinceMidnight() - start > 30)
            throw ProcessExit{99};   // still waiting for a key: give up
    });
    EXPECT_TRUE(endsProcess([&] { EndNormalVote(ctx); }));
    const double took = run.t.clock.secondsSinceMidnight() - start;
    EXPECT_GE(took, 3.0);
    EXPECT_LT(took, 3.5);
    EXPECT_EQ(exits, 1);
    EXPECT_EQ(result.placed, std::vector<short>{-1});
    EXPECT_TRUE(sent("NEXTSLIDE,2"));
}

TEST_F(LiveVoteTest, AnAllRunShowsItsProgressAsAStripOverTheShow)
{
    forms.Unload(FormName::vCast);
    ctx.commandLine = "TLXVOTE,ALL";
    // No slide holds a question: each pass ends at once and chains the next.
    EXPECT_TRUE(endsProcess([&] { Main(ctx); }));
    EXPECT_TRUE(view().visible);
    EXPECT_TRUE(view().progressVisible);
    EXPECT_EQ(view().progressMax, 3);
    EXPECT_EQ(view().progress, 3);
    // A quarter in and half down the show, half the screen wide and 200 twips high.
    const WindowRect expected{480, 540, 480 + Desktop().desktop.width() / 2, 540 + 13};
    EXPECT_EQ(view().rect, expected);
}

TEST_F(LiveVoteTest, EscapeOnASlideWithEarlierVotesKeepsThemAndAddsNone)
{
    const QString earlier = "01 Nov 2026,10:00:00,1;2;3;4;\r\n";
    host::Tags* tags = ctx.oPres->GetSlides()->Item(2)->GetTags();
    tags->Add("TLXVOTES", earlier);
    PrepareVotesCastWindow(ctx);
    scriptKeys(this, run.t.pump, vcast(), {{5, '1'}, {10, 27}});
    EXPECT_TRUE(endsProcess([&] { DoCountUpGraphVote(ctx); }));
    EXPECT_EQ(tags->Item("TLXVOTES"), earlier);
    EXPECT_EQ(ctx.voteCancelled, 1);
}

TEST_F(LiveVoteTest, MinusNarrowsTheKeypadsToThoseWhoVotedAndEndsTheVote)
{
    EXPECT_FALSE(endsProcess([&] { vcast().KeyInput('-'); }));   // no vote received yet
    EXPECT_TRUE(ctx.oPres->GetTags()->Item("ActiveKeypads").isEmpty());
    // Keypads 1 and 2 of the four in use vote from the keyboard base.
    ctx.activeKeypads = QStringList{"1", "2", "3", "4"};
    for (int key : {'2', '1'}) {
        run.t.clock.advanceMs(2000);
        vcast().KeyInput(key);
    }
    run.t.clock.advanceMs(2000);
    EXPECT_TRUE(endsProcess([&] { vcast().KeyInput('-'); }));
    EXPECT_EQ(ctx.oPres->GetTags()->Item("ActiveKeypads"), "1,2");
    EXPECT_EQ(charts.charts, 1);
}

TEST_F(LiveVoteTest, PauseHoldsLiveTextAndResumeDecodesItInOrder)
{
    ctx.FixedFree = 1;
    ctx.FractionalJoltTEXT = 1;
    vcast().KeyInput('p');
    EXPECT_TRUE(comms.livePaused);
    EXPECT_EQ(view().counter, "Paused");
    EXPECT_TRUE(sent("PAUSEVOTE"));
    comms.pausedQueue = QStringList{"[4;2],", "", "[5;3],"};
    run.t.clock.advanceMs(2000);
    vcast().KeyInput('p');
    EXPECT_FALSE(comms.livePaused);
    EXPECT_TRUE(comms.pausedQueue.isEmpty());
    EXPECT_TRUE(sent("RESUMEVOTE"));
    EXPECT_EQ(view().counter, "2");   // the count, once votes came in
    EXPECT_EQ(vote(4), "2");
    EXPECT_EQ(vote(5), "3");
}
