#include "app_forms.h"

#include "livewindow/ui/keypads_not_voted_window.h"
#include "livewindow/ui/live_window_forms.h"
#include "livewindow/ui/votes_cast_window.h"
#include "vote/run_context.h"

namespace tallix {

QStringList AppForms::LoadedForms() const
{
    // The result window is also made by the chart code itself when it first draws.
    QStringList forms = loaded_;
    if (ctx_.FrmTChart && !forms.contains(FormName::FrmTChart))
        forms << FormName::FrmTChart;
    return forms;
}

void AppForms::Load(const QString& name)
{
    if (IsLoaded(name))
        return;
    loaded_ << name;
    if (auto it = hooks_.find(name); it != hooks_.end() && it->load)
        it->load();
}

void AppForms::Unload(const QString& name)
{
    if (!IsLoaded(name))
        return;
    loaded_.removeAll(name);
    if (auto it = hooks_.find(name); it != hooks_.end() && it->unload)
        it->unload();
}

KeypadsNotVotedForm* AppForms::keypadsNotVotedForm()
{
    return live_ ? live_->keypadsNotVoted() : nullptr;
}

void AppForms::ShowHelp()
{
    if (live_)
        live_->ShowHelp();
}

void AppForms::FadeOutAll()
{
    if (live_)
        live_->FadeOutAll(0.5);
}

} // namespace tallix
