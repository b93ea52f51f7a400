#pragma once
// Reading saved votes back into the run state.

#include <QString>

namespace tallix {

struct RunContext;

// `reference` names the slide by index or id, followed by ":" ("7:Revote"); `item` is
// the rating item or series iteration to load (from 0), negative for the last line.
// True when a line was loaded into `votes`. A slide that is neither an index nor an
// id raises to the caller's report.
bool LoadVotes(RunContext& ctx, const QString& reference, short item);
// The vote list (third field) of the last line of a `TLXVOTES` value that has one: the
// slide's current result. Empty when no line has finished.
QString LastFinishedVoteList(const QString& saved);

} // namespace tallix
