#pragma once
// Reading saved votes back into the run state.

#include <QString>

namespace tallix {

struct RunContext;

// `reference` names the slide ("7", or "7:Revote"); `item` the line, -1 for the last.
void LoadVotes(RunContext& ctx, const QString& reference, short item);

} // namespace tallix
