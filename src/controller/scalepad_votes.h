#pragma once

#include <QString>

namespace tallix {

struct RunContext;

// False when the text holds a banned word.
bool CheckTextVoteAgainstBannedList(RunContext& ctx, const QString& text);

} // namespace tallix
