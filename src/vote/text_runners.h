#pragma once
// Text votes: an object vote writes each option's result into the table beside it; the
// slide is the result, so no chart is drawn.

#include <QtGlobal>

namespace tallix {

struct RunContext;

void DoCountUpTextVote(RunContext& ctx, qint32 questionIndex);
void DoCountDownTextVote(RunContext& ctx, qint32 questionIndex);
void EndTextVote(RunContext& ctx);

} // namespace tallix
