#include "votes_cast_boxes.h"

#include "vote/not_built.h"
#include "vote/run_context.h"

namespace tallix {

void LoadVotesCastBoxes(RunContext& ctx)
{
    NotBuiltYet(ctx, "Vote", "LoadVotesCastBoxes");
}

void PrepareVotesCastWindow(RunContext& ctx)
{
    NotBuiltYet(ctx, "Vote", "PrepareVotesCastWindow");
}

void ShowVotesCast(RunContext& ctx)
{
    NotBuiltYet(ctx, "Vote", "ShowVotesCast");
}

void showMakeCast(RunContext& ctx, short, short)
{
    NotBuiltYet(ctx, "Vote", "showMakeCast");
}

} // namespace tallix
