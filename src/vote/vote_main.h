#pragma once
// Start-up: the launch string, attaching to the presentation, reading the question,
// and handing over to the driver. Main is also entered again in the same process (the
// next slide of an ALL run, a revote), so everything in it is safe to run twice.

#include <QString>

namespace tallix {

struct RunContext;
namespace host {
class Slide;
}

void Main(RunContext& ctx);
// Splits the launch string into arg1..arg5 and settles `currentSlide`.
void SplitLaunchString(RunContext& ctx, const QString& commandLine);
void TerminateAndRunMacro(RunContext& ctx, const QString& reason);
bool SlideHasVotes(RunContext& ctx);
void CheckStillOnSlide(RunContext& ctx);
void ProcessTimeLog(RunContext& ctx, const QString& label);
void RecordPPTSlideObjectNames(RunContext& ctx, host::Slide* slide);
void RemoveObjectsAutomaticallyAddedByPPT(RunContext& ctx, host::Slide* slide);
// The active document window's index; also makes its presentation the run's.
int GetPPAPPActiveWindowIndex(RunContext& ctx);

} // namespace tallix
