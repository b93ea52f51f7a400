#pragma once
// The program's form manager: each form is made and dropped by the hooks registered
// for its name; the order of loading is kept, as the original's forms collection did.

#include "vote/forms.h"

#include <QMap>

#include <functional>

namespace tallix {

class AppForms final : public FormManager {
public:
    struct Hooks {
        std::function<void()> load;
        std::function<void()> unload;
    };

    void Register(const QString& name, Hooks hooks) { hooks_.insert(name, std::move(hooks)); }

    bool IsLoaded(const QString& name) const override { return loaded_.contains(name); }
    void Load(const QString& name) override;
    void Unload(const QString& name) override;
    QStringList LoadedForms() const override { return loaded_; }

private:
    QMap<QString, Hooks> hooks_;
    QStringList loaded_;
};

} // namespace tallix
