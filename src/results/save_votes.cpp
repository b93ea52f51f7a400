#include "save_votes.h"

#include "vote/not_built.h"
#include "vote/run_context.h"

namespace tallix {

void SaveVotes(RunContext& ctx, short)
{
    NotBuiltYet(ctx, "Common_IO", "SaveVotes");
}

void saveSeriesVotes(RunContext& ctx)
{
    NotBuiltYet(ctx, "Common_IO", "saveSeriesVotes");
}

} // namespace tallix
