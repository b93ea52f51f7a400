#pragma once

namespace tallix {

struct RunContext;

void ShowVotesCast(RunContext& ctx);
void showMakeCast(RunContext& ctx, short options, short iteration);

} // namespace tallix
