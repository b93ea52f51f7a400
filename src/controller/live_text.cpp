#include "live_text.h"

#include "vote/not_built.h"
#include "vote/run_context.h"

namespace tallix {

bool LiveTextDisplay(RunContext& ctx, qint32, const QString&)
{
    NotBuiltYet(ctx, "comms", "LiveTextDisplay");
    return false;
}

} // namespace tallix
