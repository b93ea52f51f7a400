#pragma once
// The question schema reader: the settings document into the run state.

namespace tallix {

struct RunContext;

void SetVarsFromXML(RunContext& ctx);

} // namespace tallix
