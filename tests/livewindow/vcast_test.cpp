#include "live_fixture.h"

#include "foundation/numbers.h"
#include "livewindow/keypads_not_voted.h"
#include "question/columns_vote_xml.h"
#include "question/common_xml.h"
#include "question/settings_document.h"
#include "vote/votes_cast_boxes.h"

#include <QFile>

using namespace tallix;
using tallix::testing::LiveVoteTest;

TEST(CountDownDisplay, ShowsASecondWhileAnyPartOfItIsLeft)
{
    const std::pair<double, int> cases[] = {{10, 10}, {9.99, 10}, {9.0, 9}, {1.0, 1}, {0.01, 1}, {0.5, 1}};
    for (auto [remaining, shown] : cases)
        EXPECT_EQ(vCastForm::DisplaySeconds(remaining), shown) << remaining;
}

TEST(CountDownDisplay, SkinnedFontFollowsTheWindowWidth)
{
    const std::pair<int, int> cases[] = {{164, 6}, {165, 8}, {239, 10}, {330, 16}, {434, 18}, {435, 24}, {3300, 24}};
    for (auto [width, size] : cases)
        EXPECT_EQ(vCastForm::SkinFontSizeForWidth(width), size) << width;
}

TEST_F(LiveVoteTest, CountDownTicksTheTagDownToZeroAndMarksTheEnd)
{
    ctx.vType = 1;
    ctx.TimeLeft = 10;
    vcast().tmr_cDownTimer().setEnabled(true);
    run.t.clock.advanceMs(10);   // the first tick only notes the start
    run.t.clock.advanceMs(10);
    EXPECT_EQ(vcast().Tag(), "10");
    EXPECT_EQ(view().counter, "10");
    run.t.clock.advanceMs(9000);
    EXPECT_EQ(vcast().Tag(), "1");
    EXPECT_EQ(ctx.countDownExpired, 0);
    run.t.clock.advanceMs(1000);
    EXPECT_EQ(vcast().Tag(), "0");
    EXPECT_EQ(view().counter, "...");
    EXPECT_EQ(ctx.countDownExpired, 2);
    EXPECT_FALSE(vcast().tmr_cDownTimer().enabled());
    EXPECT_TRUE(sent("VOTE-STATUS:..."));
    // Each caption goes to the controller once, not once a tick.
    EXPECT_EQ(link.sent.count("VOTE-STATUS:10"), 1);
}

TEST_F(LiveVoteTest, BaseIndicatorsAgeThroughYellowOrangeRedAndSurviveMidnight)
{
    vcast().LogBaseResponded(0);
    vcast().LogBaseResponded(100);   // out of range: ignored
    vcast().LogBaseResponded(-1);
    run.t.clock.advanceMs(1200);
    EXPECT_EQ(view().colours[0], 0x00FFFF);
    run.t.clock.advanceMs(500);
    EXPECT_EQ(view().colours[0], 0x0080FF);
    run.t.clock.advanceMs(500);
    EXPECT_EQ(view().colours[0], 0x0000FF);
    // A timer value ahead of now (midnight passed) is reset, never shown red.
    vcast().lastHeard[1] = run.t.clock.secondsSinceMidnight() + 5000;
    view().colours.erase(1);
    vcast().tmr_baseStatusMonitor_Timer();
    EXPECT_EQ(view().colours.count(1), 0u);
    EXPECT_DOUBLE_EQ(vcast().lastHeard[1], run.t.clock.secondsSinceMidnight());
}

TEST_F(LiveVoteTest, KeyGuardDropsAKeyWhileAnotherIsBeingHandled)
{
    ctx.activeKeypads = QStringList{"1", "2"};
    vcast().lastKeyTime = qint32(std::lround(run.t.clock.secondsSinceMidnight()));
    vcast().Form_KeyPress('+');
    EXPECT_EQ(ctx.activeKeypads, QStringList({"1", "2"}));
    run.t.clock.advanceMs(1000);
    vcast().Form_KeyPress('+');
    EXPECT_NE(ctx.activeKeypads, QStringList({"1", "2"}));
    EXPECT_EQ(vcast().lastKeyTime, 0);
}

TEST_F(LiveVoteTest, HeldKeyActsOnceButNotInAnAllRun)
{
    vcast().Form_KeyDown(KeyCode::Down, 0);
    EXPECT_TRUE(vcast().clickArmed);   // the first click of an empty vote arms
    vcast().Form_KeyDown(KeyCode::Down, 0);
    EXPECT_EQ(vcast().lastKeyCode, -1);
    EXPECT_TRUE(vcast().clickArmed);   // the repeat was dropped
    EXPECT_TRUE(endsProcess([&] { vcast().Form_KeyDown(KeyCode::Down, 0); }));

    ctx.arg5 = "ALL";
    vcast().lastKeyCode = KeyCode::F1;
    vcast().Form_KeyDown(KeyCode::F1, 0);
    EXPECT_EQ(forms.helpShown, 1);
}

TEST_F(LiveVoteTest, LowerNDoesNothingWhileUpperNEndsLikeSpace)
{
    vcast().Form_KeyPress('n');
    EXPECT_FALSE(vcast().clickArmed);
    vcast().Form_KeyPress('N');
    EXPECT_TRUE(vcast().clickArmed);
}

TEST_F(LiveVoteTest, KeyboardBaseDigitsAndZBecomeVotesOfSuccessiveKeypads)
{
    ctx.allowAbstain = true;
    for (int key : {'1', '3', 'z', '4'})
        vcast().KeyInput(key);
    EXPECT_EQ(vote(1), "1");
    EXPECT_EQ(vote(2), "3");
    EXPECT_EQ(vote(3), "-2");
    EXPECT_EQ(vote(4), "4");
    EXPECT_EQ(vote(5), "-1");
    EXPECT_TRUE(ctx.voteReceived);
    EXPECT_EQ(vcast().nextKeyboardKeypad, 4);
}

TEST_F(LiveVoteTest, DigitOnAHardwareBaseOffersKeyboardVotingEachTimeUntilAccepted)
{
    ctx.BaseType = "HW";
    vcast().tmr_cDownTimer().setEnabled(true);
    run.t.dialogs.answer(MsgBoxResult::No);
    vcast().Form_KeyPress('2');
    EXPECT_EQ(run.t.dialogs.shown.size(), 1u);
    EXPECT_EQ(vote(1), "-1");
    EXPECT_TRUE(vcast().tmr_cDownTimer().enabled());   // the clock goes on where it stood
    run.t.dialogs.answer(MsgBoxResult::Yes);
    vcast().Form_KeyPress('2');
    EXPECT_EQ(run.t.dialogs.shown.size(), 2u);
    EXPECT_TRUE(run.t.dialogs.shown.back().text.startsWith("Keyboard voting is not enabled."));
    EXPECT_EQ(ctx.BaseType, "KBOARD");
    EXPECT_TRUE(sent("Kboard"));
    EXPECT_EQ(vote(1), "2");
}

TEST_F(LiveVoteTest, QuitAndEscapeEndWithVoteFinishedAndNoAutoAdvance)
{
    for (int way = 0; way < 2; ++way) {
        ctx.AutoAdvance = true;
        ctx.voteEndRecorded = false;
        ppt.ActivePresentation()->GetTags()->Delete("tlxVoteTerminated");
        if (way == 0)
            EXPECT_TRUE(endsProcess([&] { vcast().Form_KeyPress('q'); }));
        else
            EXPECT_TRUE(endsProcess([&] { vcast().Form_KeyDown(KeyCode::Escape, 0); }));
        EXPECT_FALSE(ctx.AutoAdvance);
        EXPECT_EQ(ReadVoteEnd(ctx), "Vote finished");
    }
    EXPECT_FALSE(view().visible);
    EXPECT_DOUBLE_EQ(view().opacity, 0);
    EXPECT_TRUE(sent("DeleteTask=Vote,Voting...\r\nEndVote"));
}

TEST_F(LiveVoteTest, LabelChangeFitsTheWindowAndEndsWhenEveryKeypadHasVoted)
{
    view().rect = {0, 0, 100, 60};
    vcast().SetCounterLabel("12345", 24);
    EXPECT_LE(view().counterTextWidth("12345", view().counterSize), 90);
    EXPECT_TRUE(view().counterVisible);
    ctx.autoEndByPercent = 1;
    vcast().SetCounterLabel("9", 24);
    EXPECT_EQ(ctx.voteEnded, 0);
    vcast().SetCounterLabel("10", 24);
    EXPECT_EQ(ctx.voteEnded, 1);
}

TEST_F(LiveVoteTest, BarCountsVotersAgainstTheActiveKeypads)
{
    struct Case {
        QStringList active;
        int voters;
        int width;
    } cases[] = {{{"1", "2", "3", "4"}, 1, 450}, {{QString()}, 1, 1800}, {{}, 9, 1800}, {{}, 3, 600}};
    for (const Case& c : cases) {
        ResetVoteArrays(ctx);
        ctx.activeKeypads = c.active;
        for (int k = 0; k < c.voters; ++k)
            ctx.votes(k) = "2";
        vcast().barActive = true;
        vcast().tmr_cDownPause_Timer();
        EXPECT_EQ(vcast().barWidth(), c.width) << c.active.join(",").toStdString() << " " << c.voters;
    }
}

TEST_F(LiveVoteTest, AutoEndByShareOfActiveKeypads)
{
    struct Case {
        QStringList active;
        float percent;
        QList<int> voters;
        bool ends;
    } cases[] = {
        {{"1", "2", "3", "4"}, 100, {1, 2, 3}, false},
        {{"1", "2", "3", "4"}, 100, {1, 2, 3, 4}, true},
        {{"1", "2", "3", "4"}, 50, {1, 2}, true},
        {{"1", "2", "3", "4"}, 50, {1, 7, 8, 9}, false},   // outside the list: not counted
        {{QString()}, 100, {}, true},                      // no list: a size of 1, every keypad responded
        {{"01", " 2", "3", "4"}, 50, {1, 2}, false},       // entries name a keypad only as its number
    };
    ctx.vType = 2;   // the series loop ends the step: nothing closes here
    for (const Case& c : cases) {
        ResetVoteArrays(ctx);
        ctx.voteEnded = 0;
        ctx.autoEndByPercent = 1;
        ctx.autoEndPercent = c.percent;
        ctx.activeKeypads = c.active;
        for (int k : c.voters)
            ctx.votes(k - 1) = "1";
        RefreshKeypadsNotVoted(ctx, true);
        EXPECT_EQ(ctx.voteEnded == 1, c.ends) << c.active.join(",").toStdString() << " " << c.percent;
    }
}

TEST_F(LiveVoteTest, NotVotedWindowOpensByItselfOnceAndNeverAtZero)
{
    ctx.activeKeypads = QStringList{"1", "2", "3"};
    ctx.votes(0) = "1";
    RefreshKeypadsNotVoted(ctx, false);
    EXPECT_FALSE(forms.IsLoaded(FormName::keypadsNotVoted));   // notVotedPopupAt 0
    EXPECT_EQ(ctx.notVotedCount, 2);
    EXPECT_EQ(ctx.respondedKeypads, QStringList{"1"});
    EXPECT_TRUE(vcast().tmr_checkKeypadsNotVotedPopUp().enabled());

    ctx.notVotedPopupAt = 2;
    run.t.clock.advanceMs(500);   // the delayed check runs the refresh with force off
    EXPECT_TRUE(forms.IsLoaded(FormName::keypadsNotVoted));
    forms.Unload(FormName::keypadsNotVoted);
    RefreshKeypadsNotVoted(ctx, false);
    EXPECT_FALSE(forms.IsLoaded(FormName::keypadsNotVoted));
}

TEST_F(LiveVoteTest, NotVotedListPagesWithOffsetsAndPace)
{
    ctx.activeKeypads = QStringList{"1", "2", "3", "4"};
    ctx.votes(1) = "2";
    NotVotedListState state;
    bool ended = false;
    EXPECT_EQ(showNotVoted(ctx, state, ended), "1 3 4 ");
    ctx.useOffsets = true;
    ctx.keypadRows(2) = "1,0,1";
    const double before = run.t.clock.secondsSinceMidnight();
    EXPECT_EQ(showNotVoted(ctx, state, ended), "1 1(2) 4 ");
    EXPECT_GE(run.t.clock.secondsSinceMidnight() - before, 1.0);   // one redraw a second

    ctx.useOffsets = false;
    ctx.scrollingDisplay = true;
    state.listStart = 1;   // keypad 2 has voted: the page starts at 3 and wraps
    EXPECT_EQ(showNotVoted(ctx, state, ended), "3 4 1 ");
}

TEST_F(LiveVoteTest, WatchOfTheShowBringsItBackAndEndsWhenItCloses)
{
    host::View* show = ppt.SlideShowWindows(1)->GetView();
    show->GotoSlide(3);
    run.t.clock.advanceMs(500);
    EXPECT_EQ(show->GetSlide()->SlideIndex(), 2);

    ppt.config().showRunning = false;
    EXPECT_THROW(run.t.clock.advanceMs(500), ProcessExit);
    EXPECT_EQ(ReadVoteEnd(ctx), "Vote finished");
}

TEST_F(LiveVoteTest, CaptionUnderTheCountFollowsTheLabelSetting)
{
    struct Case {
        short vType;
        const char* label;
        const char* caption;
    };
    const Case cases[] = {{0, "[DEFAULT]", "Votes Cast"}, {0, "", "Votes Cast"},     {0, "[BLANK]", ""},
                          {0, "Hands up", "Hands up"},    {3, "[DEFAULT]", "Votes Cast"}, {1, "[DEFAULT]", "Time Left"},
                          {1, "[BLANK]", ""},             {1, "Hands up", "Time Left"}};
    for (const Case& c : cases) {
        ctx.vType = c.vType;
        ctx.VotesCastLabel = c.label;
        LoadVotesCastBoxes(ctx);
        EXPECT_EQ(view().caption, QString(c.caption)) << c.vType << " " << c.label;
    }
}

TEST_F(LiveVoteTest, AQuestionMadeFromTheShippedDefaultsShowsTheDefaultCaption)
{
    QFile f(TALLIX_SOURCE_DIR "/data/Default.xml");
    ASSERT_TRUE(f.open(QIODevice::ReadOnly));
    ASSERT_TRUE(settingsDocOf(ctx).loadXML(QString::fromUtf8(f.readAll())));
    SetVarsFromXML(ctx);
    ctx.vType = 0;
    LoadVotesCastBoxes(ctx);
    EXPECT_EQ(view().caption, "Votes Cast");
}
