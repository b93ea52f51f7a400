#include "vote_close.h"

#include "controller/comms.h"
#include "foundation/error_report.h"
#include "foundation/logs.h"
#include "vote/not_built.h"
#include "vote/run_context.h"

namespace tallix {

void closeVote(RunContext& ctx)
{
    ctx.votesCast = 0;
    ctx.voteEnded = 1;
    NotBuiltYet(ctx, "Vote", "closeVote");
}

void execRevote(RunContext& ctx, short, short)
{
    NotBuiltYet(ctx, "Vote", "execRevote");
}

void FullShutDown(RunContext& ctx)
{
    Guarded(ctx, "Vote", "FullShutdown", false, [&] {
        ctx.voteRunning = false;
        WriteDebugLog(ctx, 0, "Finish - arg4 = " + ctx.arg4, "Vote", "FullShutDown");
        if (ctx.arg1 != "TLXRESHOW" && ctx.comms)
            ctx.comms->SendCommandToController("EndVote\r\nDeleteTask=Vote,Voting...");
    });
    if (ctx.terminator)
        ctx.terminator(0);
}

} // namespace tallix
