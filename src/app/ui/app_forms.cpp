#include "app_forms.h"

namespace tallix {

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

} // namespace tallix
