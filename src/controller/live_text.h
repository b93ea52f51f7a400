#pragma once

#include <QString>

namespace tallix {

struct RunContext;

// Shows an accepted free-text answer on the slide while the vote runs. True when the
// display asks for the vote to pause because a screen is full.
bool LiveTextDisplay(RunContext& ctx, qint32 keypad, const QString& value);

} // namespace tallix
