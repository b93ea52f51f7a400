#pragma once
// Start-up: the launch string, attaching to the presentation, reading the question,
// and handing over to the driver.

#include <QString>

namespace tallix {

struct RunContext;

void Main(RunContext& ctx);
// Splits the launch string into arg1..arg5 and settles `currentSlide`.
void SplitLaunchString(RunContext& ctx, const QString& commandLine);
void TerminateAndRunMacro(RunContext& ctx, const QString& reason);
bool SlideHasVotes(RunContext& ctx);
void CheckStillOnSlide(RunContext& ctx);

} // namespace tallix
