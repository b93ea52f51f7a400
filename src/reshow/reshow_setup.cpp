#include "reshow_setup.h"

#include "vote/not_built.h"
#include "vote/run_context.h"

namespace tallix {

void SetReshowVarsFromXML(RunContext& ctx)
{
    NotBuiltYet(ctx, "Common_Reshow", "SetReshowVarsFromXML");
}

} // namespace tallix
