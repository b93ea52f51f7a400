#include "run_context.h"

#include "question/settings_document.h"

namespace tallix {

RunState::RunState()
{
    // One colour for each of options 0 to 10; options beyond take these again in turn.
    optionColours.redim(10);
    seriesColours.redim(10);
}
RunState::~RunState() = default;

void ResetVoteArrays(RunContext& ctx)
{
    const int top = ctx.keypadUniverse;
    ctx.votes.redim(top);
    ctx.votesBackup.redim(top);
    ctx.voteTimes.redim(top);
    for (int i = 0; i < top; ++i) {
        ctx.votes(i) = QStringLiteral("-1");
        ctx.votesBackup(i) = QStringLiteral("-1");
        ctx.voteTimes(i) = -1;
    }
    ctx.countDownExpired = 0;
}

void AllocArrays(RunContext& ctx)
{
    const int top = ctx.keypadUniverse;
    ctx.votes.redimPreserve(top);
    ctx.votesBackup.redimPreserve(top);
    ctx.voteTimes.redimPreserve(top);
    ctx.keypadWork1.redimPreserve(top);
    ctx.keypadWork2.redimPreserve(top);
    ctx.keypadWork3.redimPreserve(top);
    if (ctx.vType == 2)
        ctx.seriesVotes.redimPreserve(ctx.Iterations, top);
}

} // namespace tallix
