#include "program_windows.h"

#include "app/ui/app_forms.h"
#include "chartwindow/ui/chart_window.h"
#include "livewindow/ui/desktop_services.h"
#include "livewindow/ui/keypads_not_voted_window.h"
#include "livewindow/ui/live_window_forms.h"
#include "livewindow/ui/votes_cast_window.h"
#include "vote/run_context.h"

#include <memory>

namespace tallix {

void RegisterProgramWindows(RunContext& ctx, AppForms& forms)
{
    static std::unique_ptr<LiveWindowForms> live;
    static std::unique_ptr<ChartWindowProcedures> charts;
    live = std::make_unique<LiveWindowForms>(ctx);
    charts = InstallChartWindow(ctx);
    InstallDesktopServices();
    for (const char* name : {"vCast", "keypadsNotVoted", "formHelp"}) {
        const QString n = QString::fromLatin1(name);
        forms.Register(n, {[n] { live->Load(n); }, [n] { live->Unload(n); }});
    }
    forms.Register(FormName::FrmTChart, {[] { charts->LoadForm(); }, [] { charts->UnloadForm(); }});
    forms.SetLiveWindows(live.get());
}

} // namespace tallix
