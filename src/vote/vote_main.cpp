#include "vote_main.h"

#include "vote/not_built.h"
#include "vote/run_context.h"

namespace tallix {

void Main(RunContext& ctx)
{
    NotBuiltYet(ctx, "Vote", "Main");
}

void SplitLaunchString(RunContext& ctx, const QString&)
{
    NotBuiltYet(ctx, "Vote", "SplitLaunchString");
}

void TerminateAndRunMacro(RunContext& ctx, const QString&)
{
    NotBuiltYet(ctx, "Vote", "TerminateAndRunMacro");
}

bool SlideHasVotes(RunContext& ctx)
{
    NotBuiltYet(ctx, "Vote", "SlideHasVotes");
    return false;
}

void CheckStillOnSlide(RunContext& ctx)
{
    NotBuiltYet(ctx, "Vote", "CheckStillOnSlide");
}

} // namespace tallix
