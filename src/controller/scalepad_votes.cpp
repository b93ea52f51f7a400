#include "scalepad_votes.h"

#include "vote/not_built.h"
#include "foundation/dialogs.h"
#include "results/common_io.h"
#include "vote/run_context.h"
#include "vote/vote_close.h"

namespace tallix {

bool CheckTextVoteAgainstBannedList(RunContext& ctx, const QString&)
{
    NotBuiltYet(ctx, "scalepad_votes", "CheckTextVoteAgainstBannedList");
    return true;
}

} // namespace tallix

namespace tallix {

short ScalepadSetup(RunContext& ctx)
{
    NotBuiltYet(ctx, "scalepad_votes", "ScalepadSetup");
    return 0;
}

void StartJolttextVote(RunContext& ctx)
{
    // Free-entry votes arrive later: until then the operator is told plainly and the run ends in order.
    NotBuiltYet(ctx, "scalepad_votes", "StartJolttextVote");
    ctx.dialogs->MsgBox("Free-entry votes cannot be run by this version of tallix vote.", MsgBoxStyle::Information,
                        "tallix");
    RecordVoteEnd(ctx, "Vote finished");
    FullShutDown(ctx);
}

} // namespace tallix
