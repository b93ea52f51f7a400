#pragma once
// The runners of an ordinary multiple-choice vote: open it, wait for its end, turn the
// votes into a chart.

namespace tallix {

struct RunContext;

void DoCountUpGraphVote(RunContext& ctx);
void DoCountDownGraphVote(RunContext& ctx);
void doCountUpDynamic(RunContext& ctx);
void EndNormalVote(RunContext& ctx);

} // namespace tallix
