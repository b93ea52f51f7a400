#pragma once
// How a vote stops: the orderly end of the process.

namespace tallix {

struct RunContext;

void FullShutDown(RunContext& ctx);

} // namespace tallix
