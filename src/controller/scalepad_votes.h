#pragma once
// Votes on keypads with a screen and text or number entry: what the controller is told
// before such a vote, the start of a free-text vote, the banned-word check and the
// rounding of typed numbers.

#include <QString>

namespace tallix {

struct RunContext;

// False when the text holds a banned word: whole blank-separated words, any case.
bool CheckTextVoteAgainstBannedList(RunContext& ctx, const QString& text);
// The user's banned words, lower-case, each wrapped in "|"; empty without a list.
QString LoadBannedWords(RunContext& ctx);
// Tells the controller the question and its answers; the number of answers sent (0: none).
short ScalepadSetup(RunContext& ctx);
void StartJolttextVote(RunContext& ctx);
// A typed number as the result shows it: `NumberDecimalPlaces` places, or `NumberSigFigs`
// figures; halves round away from zero. No vote ("-1") is 0.
double ConvertVoteToFormattedNumber(const RunContext& ctx, const QString& text);

} // namespace tallix
