#pragma once
// The ends of the text and rating votes and their charts, reached from close and
// revote under their final names.

namespace tallix {

struct RunContext;

void EndTextVote(RunContext& ctx);
void EndRankVote(RunContext& ctx);
void DoCountUpRankVote(RunContext& ctx, short item);
void showRankResultsAll(RunContext& ctx);
void DisplayRatingChart(RunContext& ctx);

} // namespace tallix

namespace tallix {
// Result displays of free-entry votes.
void JolttextVote_ResultsDisplay(RunContext& ctx);
void Numeric_ResultsDisplay(RunContext& ctx);
void ConvertResultsToFractions(RunContext& ctx);
} // namespace tallix
