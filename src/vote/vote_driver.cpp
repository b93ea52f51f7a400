#include "vote_driver.h"

#include "vote/not_built.h"
#include "vote/run_context.h"

namespace tallix {

void execVote(RunContext& ctx, short&)
{
    NotBuiltYet(ctx, "Vote", "execVote");
}

} // namespace tallix
