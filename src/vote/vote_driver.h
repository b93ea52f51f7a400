#pragma once
// The vote run driver: what the controller is told, and which runner runs the vote.

namespace tallix {

struct RunContext;

void execVote(RunContext& ctx, short& restart);

} // namespace tallix
