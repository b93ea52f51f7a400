#include "keypads_not_voted.h"

#include "vote/not_built.h"
#include "vote/run_context.h"

namespace tallix {

void RefreshKeypadsNotVoted(RunContext& ctx, bool)
{
    NotBuiltYet(ctx, "keypadsNotVoted", "RefreshKeypadsNotVoted");
}

} // namespace tallix
