// A figure that timed the decoder rejecting its input would look fast and mean nothing:
// the burst must land whole, as a vote the program accepts.
#include "vote_setup.h"

#include <gtest/gtest.h>

using namespace tallix;
using namespace tallix::bench;

namespace {

TEST(BenchBurst, EveryKeypadsRecordLandsInTheRunState)
{
    BigVote vote;
    vote.comms.setTxt_data(BurstText());
    EXPECT_EQ(vote.ctx.votesCast, kKeypads);
    for (int k : {1, 2, 5000, kKeypads})
        EXPECT_EQ(vote.ctx.votes(k - 1), QString::number((k * 7) % kOptions)) << "keypad " << k;
    EXPECT_EQ(vote.comms.txt_VoteCounter, QString::number(kKeypads));
}

} // namespace
