#include "after_result.h"

#include "foundation/error_report.h"
#include "foundation/event_pump.h"
#include "vote/forms.h"
#include "vote/run_context.h"
#include "vote/vote_close.h"
#include "vote/vote_main.h"

namespace tallix {

void AwaitPresenterAfterResult(RunContext& ctx)
{
    Guarded(ctx, "FrmTChart", "AwaitPresenterAfterResult", false, 0, [&] {
        // With AutoAdvance the show moves on by itself: the shutdown waits its time.
        if (ctx.AutoAdvance) {
            FullShutDown(ctx);
            return 0;
        }
        while (ctx.FrmTChart && ctx.FrmTChart->PendingKey() == 0)
            ctx.pump->WaitForEvents(50);
        if (!ctx.FrmTChart)
            return 0;
        const short key = ctx.FrmTChart->PendingKey();
        const short shift = ctx.FrmTChart->PendingShift();
        ctx.FrmTChart->ClearPendingKey();
        constexpr short kCtrl = 2;
        if (shift == kCtrl && key == 'Q')
            TerminateAndRunMacro(ctx, QStringLiteral("InstaQ"));
        else if (shift == kCtrl && key == 'G')
            TerminateAndRunMacro(ctx, QStringLiteral("instaGraph"));
        else
            FullShutDown(ctx);
        return 0;
    });
}

} // namespace tallix
