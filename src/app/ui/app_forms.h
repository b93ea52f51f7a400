#pragma once
// The program's form manager: each form is made and dropped by the hooks registered
// for its name; the order of loading is kept, as the original's forms collection did.

#include "vote/forms.h"

#include <QMap>

#include <functional>

namespace tallix {

class LiveWindowForms;
struct RunContext;

class AppForms final : public FormManager {
public:
    struct Hooks {
        std::function<void()> load;
        std::function<void()> unload;
    };

    explicit AppForms(RunContext& ctx) : ctx_(ctx) {}
    void Register(const QString& name, Hooks hooks) { hooks_.insert(name, std::move(hooks)); }
    void SetLiveWindows(LiveWindowForms* live) { live_ = live; }

    bool IsLoaded(const QString& name) const override { return LoadedForms().contains(name); }
    void Load(const QString& name) override;
    void Unload(const QString& name) override;
    QStringList LoadedForms() const override;
    KeypadsNotVotedForm* keypadsNotVotedForm() override;
    void ShowHelp() override;
    void FadeOutAll() override;

private:
    RunContext& ctx_;
    QMap<QString, Hooks> hooks_;
    QStringList loaded_;
    LiveWindowForms* live_ = nullptr;
};

} // namespace tallix
