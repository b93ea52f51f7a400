#pragma once

#include <QtGlobal>

namespace tallix {

struct RunContext;

// Brings the participant list into `participants`. Until the spreadsheet reader
// exists every keypad of the range is "Keypad n" with weight 1.
void ParticipantSetup(RunContext& ctx, qint32 slide = 0);

} // namespace tallix
