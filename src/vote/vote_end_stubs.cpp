#include "vote_end_stubs.h"

#include "vote/not_built.h"
#include "vote/run_context.h"

namespace tallix {
void JolttextVote_ResultsDisplay(RunContext& ctx) { NotBuiltYet(ctx, "scalepad_votes", "JolttextVote_ResultsDisplay"); }
void Numeric_ResultsDisplay(RunContext& ctx) { NotBuiltYet(ctx, "scalepad_votes", "Numeric_ResultsDisplay"); }
void ConvertResultsToFractions(RunContext& ctx) { NotBuiltYet(ctx, "scalepad_votes", "ConvertResultsToFractions"); }
} // namespace tallix
