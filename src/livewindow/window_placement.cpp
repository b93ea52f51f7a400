#include "window_placement.h"

#include "vote/not_built.h"
#include "vote/run_context.h"

namespace tallix {

bool RecordPPTHandles(RunContext& ctx)
{
    NotBuiltYet(ctx, "Common_PPAPP_Functions", "RecordPPTHandles");
    return false;
}

} // namespace tallix
