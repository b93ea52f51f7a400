#pragma once
// A run with `comms` loaded over a recording controller link, for decoder tests.

#include "controller/comms.h"
#include "controller/controller_link.h"
#include "support/test_context.h"

#include <gtest/gtest.h>

namespace tallix::testing {

class ControllerTest : public ::testing::Test {
protected:
    TestRun run;
    RunContext& ctx = run.ctx;
    RecordingControllerLink link;
    Comms comms{ctx, link};
    int exits = 0;

    ControllerTest()
    {
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
    QString vote(int keypad) const { return ctx.votes(keypad - 1); }
    QString counter() const { return comms.txt_VoteCounter; }
};

} // namespace tallix::testing
