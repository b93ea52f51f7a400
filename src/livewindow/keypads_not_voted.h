#pragma once

namespace tallix {

struct RunContext;

void RefreshKeypadsNotVoted(RunContext& ctx, bool force);

} // namespace tallix
