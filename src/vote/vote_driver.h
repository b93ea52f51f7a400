#pragma once

#include <QString>
// The vote run driver: what the controller is told, and which runner runs the vote.

namespace tallix {

struct RunContext;

void execVote(RunContext& ctx, short& restart);
// What the keypads show while the vote is open ("||" breaks a keypad's line).
QString KeypadDisplayText(const RunContext& ctx);

} // namespace tallix
