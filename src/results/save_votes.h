#pragma once
// The saved vote record: one line per vote appended to the slide's TLXVOTES tag, and
// its response times to TLXProcessTime. Failures go to the caller's error report.

#include <QString>

namespace tallix {

struct RunContext;

// `item` is the rating item saved (from 0); it is read only for a rating vote.
void SaveVotes(RunContext& ctx, short item);
// One line per iteration of a series vote, "n of Iterations" in its last field.
void saveSeriesVotes(RunContext& ctx);

// A keypad's entry in the saved list: "X" cleared, "-" none, else the entry as it is.
QString SavedVoteToken(const QString& vote);

} // namespace tallix
