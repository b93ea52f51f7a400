#pragma once
// The saved vote record: one line per vote appended to the slide's TLXVOTES tag.

namespace tallix {

struct RunContext;

void SaveVotes(RunContext& ctx, short item);
void saveSeriesVotes(RunContext& ctx);

} // namespace tallix
