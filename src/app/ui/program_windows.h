#pragma once
// The windows of the program, registered with its form manager.

namespace tallix {

class AppForms;
struct RunContext;

void RegisterProgramWindows(RunContext& ctx, AppForms& forms);

} // namespace tallix
