#include "dialogs.h"

namespace tallix {

namespace {
int firstButton(int style)
{
    switch (style & 7) {
    case MsgBoxStyle::AbortRetryIgnore: return MsgBoxResult::Abort;
    case MsgBoxStyle::YesNoCancel:
    case MsgBoxStyle::YesNo: return MsgBoxResult::Yes;
    case MsgBoxStyle::RetryCancel: return MsgBoxResult::Retry;
    default: return MsgBoxResult::OK;
    }
}
} // namespace

int ScriptedDialogs::MsgBox(const QString& prompt, int style, const QString& title)
{
    shown.push_back({Shown::Message, title, prompt, style});
    if (msgAnswers.empty())
        return firstButton(style);
    const int r = msgAnswers.front();
    msgAnswers.pop_front();
    return r;
}

QString ScriptedDialogs::InputBox(const QString& prompt, const QString& title, const QString& defaultText)
{
    shown.push_back({Shown::Input, title, prompt, 0});
    if (inputAnswers.empty())
        return defaultText;
    QString r = inputAnswers.front();
    inputAnswers.pop_front();
    return r;
}

void ScriptedDialogs::ErrorDialog(const QString& title, const QString& report, const QString&, const QString&)
{
    shown.push_back({Shown::Error, title, report, 0});
}

} // namespace tallix
