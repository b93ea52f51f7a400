#pragma once
// Reshow setup: a reshow question read from its settings.

namespace tallix {

struct RunContext;

void SetReshowVarsFromXML(RunContext& ctx);

} // namespace tallix
