#include "graph_runners.h"

#include "vote/not_built.h"
#include "vote/run_context.h"

namespace tallix {

void DoCountUpGraphVote(RunContext& ctx)
{
    NotBuiltYet(ctx, "CVote", "DoCountUpGraphVote");
}

void DoCountDownGraphVote(RunContext& ctx)
{
    NotBuiltYet(ctx, "CVote", "DoCountDownGraphVote");
}

void doCountUpDynamic(RunContext& ctx)
{
    NotBuiltYet(ctx, "CVote", "doCountUpDynamic");
}

void EndNormalVote(RunContext& ctx)
{
    NotBuiltYet(ctx, "CVote", "EndNormalVote");
}

} // namespace tallix
