#include "columns_vote_xml.h"

#include "vote/not_built.h"
#include "vote/run_context.h"

namespace tallix {

void SetVarsFromXML(RunContext& ctx)
{
    NotBuiltYet(ctx, "Common_ColumnsVoteXMLStuff", "SetVarsFromXML");
}

} // namespace tallix
