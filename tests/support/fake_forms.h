#pragma once
// Forms for logic tests: `comms` over a recording controller link, and a record of
// what was loaded and unloaded.

#include "controller/comms.h"
#include "controller/controller_link.h"
#include "vote/forms.h"
#include "vote/run_context.h"

#include <memory>

namespace tallix::testing {

class FakeForms final : public FormManager {
public:
    explicit FakeForms(RunContext& ctx) : ctx_(ctx) { ctx.forms = this; }

    bool IsLoaded(const QString& name) const override { return loaded_.contains(name); }
    void Load(const QString& name) override
    {
        if (IsLoaded(name))
            return;
        loaded_ << name;
        if (name == FormName::comms) {
            comms = std::make_unique<Comms>(ctx_, link);
            ctx_.comms = comms.get();
            comms->Form_Load();
        }
    }
    void Unload(const QString& name) override
    {
        loaded_.removeAll(name);
        if (name == FormName::comms) {
            ctx_.comms = nullptr;
            comms.reset();
        }
    }
    QStringList LoadedForms() const override { return loaded_; }

    RecordingControllerLink link;
    std::unique_ptr<Comms> comms;

private:
    RunContext& ctx_;
    QStringList loaded_;
};

} // namespace tallix::testing
