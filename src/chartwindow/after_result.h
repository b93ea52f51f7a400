#pragma once
// After the picture is on the slide the result window stays up over it, since no running
// show displays the picture: the presenter's next key decides how the run ends.

namespace tallix {

struct RunContext;

// With AutoAdvance on nothing is awaited: the run ends after AutoAdvanceTime.
// Otherwise waits, pumping, until the result window has a key for the end of the result or is gone
// (a restart unloads it; a click ends the run itself), then acts on the key: Ctrl+Q and
// Ctrl+G run the add-in's "InstaQ" and "instaGraph", any other stored key shuts down.
void AwaitPresenterAfterResult(RunContext& ctx);

} // namespace tallix
