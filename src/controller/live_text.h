#pragma once

#include <QString>

namespace tallix {

struct RunContext;
namespace host {
class Shape;
}

// Shows an accepted free-text answer on the slide while the vote runs. True when the
// display asks for the vote to pause because a screen is full.
bool LiveTextDisplay(RunContext& ctx, qint32 keypad, const QString& value);
// One step of the scrolling list: `WLSDisplay` answers from `scrollPos` on.
void JolttextScrollTick(RunContext& ctx);
// `tlx_answers`, made from its backup `tlx_answers-BAK` at the backup's place when it is
// missing; null when neither is on the slide.
host::Shape* LiveAnswersShape(RunContext& ctx);
// A keypad's participant name, or its number when it has none.
QString ParticipantName(const RunContext& ctx, qint32 keypad);

} // namespace tallix
