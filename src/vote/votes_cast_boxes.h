#pragma once
// Dressing the votes-cast window for the kind of vote, and keeping its count.

namespace tallix {

struct RunContext;

void LoadVotesCastBoxes(RunContext& ctx);
void PrepareVotesCastWindow(RunContext& ctx);
void ShowVotesCast(RunContext& ctx);
void showMakeCast(RunContext& ctx, short options, short iteration);

} // namespace tallix
