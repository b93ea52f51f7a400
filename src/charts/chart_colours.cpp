#include "chart_colours.h"

#include "vote/not_built.h"
#include "vote/run_context.h"

namespace tallix {

void LoadDefaultColours(RunContext& ctx, short)
{
    NotBuiltYet(ctx, "Common_ChartDisplay", "LoadDefaultColours");
}

short SetColoursFromPPT(RunContext& ctx)
{
    NotBuiltYet(ctx, "Common_ChartDisplay", "SetColoursFromPPT");
    return 0;
}

void SetFontFromPPT(RunContext& ctx)
{
    NotBuiltYet(ctx, "Common_ChartDisplay", "SetFontFromPPT");
}

} // namespace tallix
