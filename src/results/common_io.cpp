#include "common_io.h"

#include "vote/not_built.h"
#include "vote/run_context.h"

namespace tallix {

QString ActiveKeypadsTag(RunContext& ctx)
{
    NotBuiltYet(ctx, "Common_IO", "ActiveKeypadsTag");
    return {};
}

void ReadActiveKeypads(RunContext& ctx)
{
    NotBuiltYet(ctx, "Common_IO", "ReadActiveKeypads");
}

void WriteActiveKeypads(RunContext& ctx, short&)
{
    NotBuiltYet(ctx, "Common_IO", "WriteActiveKeypads");
}

} // namespace tallix
