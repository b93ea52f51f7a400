#pragma once
// Result displays of free-entry votes, reached under their final names.

namespace tallix {

struct RunContext;

void JolttextVote_ResultsDisplay(RunContext& ctx);
void Numeric_ResultsDisplay(RunContext& ctx);
void ConvertResultsToFractions(RunContext& ctx);
} // namespace tallix
