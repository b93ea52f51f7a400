#pragma once
// Placing our windows over the show's picture.

namespace tallix {

struct RunContext;

// Refreshes the show's and the edit window's rectangles from the host; true if found.
bool RecordPPTHandles(RunContext& ctx);

} // namespace tallix
