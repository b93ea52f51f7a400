#include "participants.h"

#include "foundation/error_report.h"
#include "foundation/logs.h"
#include "vote/run_context.h"

namespace tallix {

void ParticipantSetup(RunContext& ctx, qint32 /*slide*/)
{
    Guarded(ctx, "Vote", "ParticipantSetup", true, [&] {
        ctx.participants.redim(ctx.keypadUniverse);
        for (qint32 k = std::max(ctx.firstKeypad, 0); k <= ctx.keypadUniverse; ++k) {
            Participant& p = ctx.participants(k);
            p.number = k;
            p.name = QStringLiteral("Keypad %1").arg(k);
            p.weighting = 1.0;
            p.seen = true;
        }
        WriteDebugLog(ctx, 0, "Participant Names Disabled - Default Settings Used", "Vote", "ParticipantSetup");
    });
}

} // namespace tallix
