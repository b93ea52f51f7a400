#include "load_votes.h"

#include "vote/not_built.h"
#include "vote/run_context.h"

namespace tallix {

void LoadVotes(RunContext& ctx, const QString&, short)
{
    NotBuiltYet(ctx, "common_IO_LoadVotes", "LoadVotes");
}

} // namespace tallix
