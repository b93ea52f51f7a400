#pragma once
// The dialogs of the program: message boxes, input boxes and the error dialog, as Qt
// modal windows. They pump events while open, as the original's did, so timers and
// controller events go on firing behind a box.

#include "foundation/dialogs.h"

namespace tallix {

class QtDialogs final : public Dialogs {
public:
    int MsgBox(const QString& prompt, int style, const QString& title) override;
    QString InputBox(const QString& prompt, const QString& title, const QString& defaultText) override;
    void ErrorDialog(const QString& title, const QString& report, const QString& exeName,
                     const QString& helpContext) override;
    void RestorePointer() override;
};

} // namespace tallix
