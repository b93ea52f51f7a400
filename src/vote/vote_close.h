#pragma once
// How a vote stops: closing the open vote, drawing a stored result again, and the
// orderly end of the process.

namespace tallix {

struct RunContext;

void closeVote(RunContext& ctx);
void execRevote(RunContext& ctx, short slideBefore, short slideAfter);
// The same vote again in this process: windows anew, settings re-read, execVote.
void RunRevote(RunContext& ctx);
void FullShutDown(RunContext& ctx);
// After the report of a runtime error in start-up or in the driver: no vote can go on,
// so the process ends at once, without the orderly shutdown.
void EndProcessAfterFailure(RunContext& ctx);

} // namespace tallix
