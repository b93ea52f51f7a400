#pragma once

#include <QString>

namespace tallix {

struct RunContext;

// False when the text holds a banned word.
bool CheckTextVoteAgainstBannedList(RunContext& ctx, const QString& text);
// Loads the Scalepad question set; the number of items it holds.
short ScalepadSetup(RunContext& ctx);
void StartJolttextVote(RunContext& ctx);

} // namespace tallix
