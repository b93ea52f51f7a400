#pragma once
// Rating votes: the room rates the items one after the other, each a vote of its own,
// a marker at the item being rated; at the end every item's average stands as a bar.

namespace tallix {

struct RunContext;

// `item` counts from 0.
void DoCountUpRankVote(RunContext& ctx, short item);
void DoCountDownRankVote(RunContext& ctx, short item);
void EndRankVote(RunContext& ctx);
// The marker hidden and the live windows closed, as each item ends.
void CloseRankItem(RunContext& ctx);

} // namespace tallix
