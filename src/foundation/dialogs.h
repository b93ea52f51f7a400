#pragma once
// Every modal box the system shows goes through this interface: Qt dialogs in the
// program, a scripted fake in tests.

#include <QString>
#include <QStringList>

#include <deque>
#include <vector>

namespace tallix {

// Button sets, icons and answers, in the runtime's numbering (styles are added up).
namespace MsgBoxStyle {
constexpr int OKOnly = 0;
constexpr int OKCancel = 1;
constexpr int AbortRetryIgnore = 2;
constexpr int YesNoCancel = 3;
constexpr int YesNo = 4;
constexpr int RetryCancel = 5;
constexpr int Critical = 16;
constexpr int Question = 32;
constexpr int Exclamation = 48;
constexpr int Information = 64;
constexpr int SystemModal = 4096;
} // namespace MsgBoxStyle

namespace MsgBoxResult {
constexpr int OK = 1;
constexpr int Cancel = 2;
constexpr int Abort = 3;
constexpr int Retry = 4;
constexpr int Ignore = 5;
constexpr int Yes = 6;
constexpr int No = 7;
} // namespace MsgBoxResult

class Dialogs {
public:
    virtual ~Dialogs() = default;
    virtual int MsgBox(const QString& prompt, int style, const QString& title) = 0;
    // Returns the empty string when cancelled, as the runtime's InputBox does.
    virtual QString InputBox(const QString& prompt, const QString& title, const QString& defaultText) = 0;
    // The program's own modal error dialog: a title, a long report, and two extra items.
    virtual void ErrorDialog(const QString& title, const QString& report, const QString& exeName,
                             const QString& helpContext) = 0;
    // Make a hidden mouse pointer visible again, whatever the depth of hiding.
    virtual void RestorePointer() = 0;
};

// Records every box and answers from a queue; with the queue empty it answers the
// first button (OK, Yes, Abort or Retry) and an InputBox with its default.
class ScriptedDialogs final : public Dialogs {
public:
    struct Shown {
        enum Kind { Message, Input, Error } kind;
        QString title;
        QString text;
        int style = 0;
    };

    int MsgBox(const QString& prompt, int style, const QString& title) override;
    QString InputBox(const QString& prompt, const QString& title, const QString& defaultText) override;
    void ErrorDialog(const QString& title, const QString& report, const QString& exeName,
                     const QString& helpContext) override;
    void RestorePointer() override { ++pointerRestores; }

    void answer(int result) { msgAnswers.push_back(result); }
    void answerInput(const QString& text) { inputAnswers.push_back(text); }

    std::vector<Shown> shown;
    std::deque<int> msgAnswers;
    std::deque<QString> inputAnswers;
    int pointerRestores = 0;
};

} // namespace tallix
