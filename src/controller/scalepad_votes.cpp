#include "scalepad_votes.h"

#include "vote/not_built.h"
#include "vote/run_context.h"

namespace tallix {

bool CheckTextVoteAgainstBannedList(RunContext& ctx, const QString&)
{
    NotBuiltYet(ctx, "scalepad_votes", "CheckTextVoteAgainstBannedList");
    return true;
}

} // namespace tallix
