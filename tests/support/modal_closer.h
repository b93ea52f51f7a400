#pragma once
// Answers the next modal dialog from inside its own event loop, so a test can drive a
// real box without sleeping: queue an action, then call the code that opens the box.

#include <QApplication>
#include <QTimer>
#include <QWidget>

#include <functional>

namespace tallix::testing {

// Runs `act` on the first modal widget that appears; retries on each event-loop turn
// until one does (at most `turns` times).
inline void AnswerNextModal(std::function<void(QWidget*)> act, int turns = 1000)
{
    QTimer::singleShot(0, [act = std::move(act), turns]() mutable {
        if (QWidget* w = QApplication::activeModalWidget()) {
            act(w);
        } else if (turns > 0) {
            AnswerNextModal(std::move(act), turns - 1);
        }
    });
}

} // namespace tallix::testing
