#pragma once
// A run with `comms` loaded over a recording controller link, for decoder tests.

#include "controller/comms.h"
#include "controller/controller_link.h"
#include "host/deck_host.h"
#include "support/error_reports.h"
#include "support/test_context.h"

#include <gtest/gtest.h>

namespace tallix::testing {

class ControllerTest : public ::testing::Test {
protected:
    TestRun run;
    RunContext& ctx = run.ctx;
    // The presentation of a vote on slide 1: tags are written and the shut-down runs through.
    host::MemoryHost ppt{1};
    RecordingControllerLink link;
    Comms comms{ctx, link};
    int exits = 0;

    ControllerTest()
    {
        ctx.oPPT = &ppt;
        ctx.oPres = ppt.ActivePresentation();
        ctx.currentSlide = 1;
        ctx.arg1 = QStringLiteral("TLXVOTE");
        ctx.oPres->GetTags()->Add("tlxActivity", "1");
        ctx.comms = &comms;
        ctx.terminator = [this](int code) {
            ++exits;
            throw ProcessExit{code};
        };
        ctx.keypadUniverse = 10;
        ctx.maxKeypads = 10;
        ctx.optionCount = 4;
        ctx.startFrom = 1;
        ctx.controllerVoteType = "9";
        ResetVoteArrays(ctx);
        ctx.participants.redim(ctx.keypadUniverse);
    }

    void feed(const QString& text) { comms.setTxt_data(text); }
    QString tag(const QString& name) const { return ctx.oPres->GetTags()->Item(name); }
    // A fatal failure: one report, then the whole shut-down, whose last word to the
    // controller closes the vote.
    void expectFatal(const ExpectErrorReports& reports, const char* procedure)
    {
        EXPECT_EQ(exits, 1);
        ASSERT_EQ(reports.count(), 1) << reports.all().toStdString();
        EXPECT_TRUE(reports.all().contains(QString("Procedure: ") + procedure)) << reports.all().toStdString();
        EXPECT_TRUE(tag("tlxActivity").isEmpty()); // a step after the send
        ASSERT_FALSE(link.sent.isEmpty());
        EXPECT_EQ(link.sent.last(), "DeleteTask=Vote,Voting...\r\nEndVote");
    }
    QString vote(int keypad) const { return ctx.votes(keypad - 1); }
    QString counter() const { return comms.txt_VoteCounter; }
};

} // namespace tallix::testing
