#include "vote_end_stubs.h"

#include "vote/not_built.h"
#include "vote/run_context.h"

namespace tallix {

void EndTextVote(RunContext& ctx) { NotBuiltYet(ctx, "TextVote", "EndTextVote"); }
void EndRankVote(RunContext& ctx) { NotBuiltYet(ctx, "RankVote", "EndRankVote"); }
void DoCountUpRankVote(RunContext& ctx, short) { NotBuiltYet(ctx, "RankVote", "DoCountUpRankVote"); }
void showRankResultsAll(RunContext& ctx) { NotBuiltYet(ctx, "Common_ChartDisplay", "showRankResultsAll"); }
void DisplayRatingChart(RunContext& ctx) { NotBuiltYet(ctx, "Common_ChartDisplay", "DisplayRatingChart"); }

} // namespace tallix

namespace tallix {
void JolttextVote_ResultsDisplay(RunContext& ctx) { NotBuiltYet(ctx, "scalepad_votes", "JolttextVote_ResultsDisplay"); }
void Numeric_ResultsDisplay(RunContext& ctx) { NotBuiltYet(ctx, "scalepad_votes", "Numeric_ResultsDisplay"); }
void ConvertResultsToFractions(RunContext& ctx) { NotBuiltYet(ctx, "scalepad_votes", "ConvertResultsToFractions"); }
} // namespace tallix
