#include "program_windows.h"

#include "app/ui/app_forms.h"
#include "vote/run_context.h"

namespace tallix {

void RegisterProgramWindows(RunContext&, AppForms&)
{
}

} // namespace tallix
