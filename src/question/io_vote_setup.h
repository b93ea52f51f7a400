#pragma once

namespace tallix {

struct RunContext;
class SettingsDocument;

// Stores the settings document in the slide's tag and marks the speaker notes.
// Slide 0 means the run's current slide.
void SaveXMLtoPPTSlide(RunContext& ctx, SettingsDocument& document, int slideNumber);

} // namespace tallix
