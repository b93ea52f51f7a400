#pragma once
// Operator scripts: the operator's keys and clicks at set times, for rehearsals and
// automated runs. Each line is "<seconds-since-start> key <KEY>" or
// "<seconds-since-start> click"; blank lines and lines starting with "#" are skipped.

#include <QList>
#include <QString>
#include <Qt>

class QWidget;

namespace tallix {

struct OperatorAction {
    double at = 0;          // seconds after the program started
    bool click = false;
    int key = 0;            // Qt::Key
    Qt::KeyboardModifiers modifiers = Qt::NoModifier;
    QString text;           // what the key types, for character keys
};

// Parses a whole script; on a bad line returns false with "line N: reason" in `error`.
bool ParseOperatorScript(const QString& script, QList<OperatorAction>& actions, QString& error);
// Parses a key as a script names it ("q", "Space", "Ctrl+Q", "Alt+F1").
bool ParseOperatorKey(const QString& name, OperatorAction& action);

// The window an operator's key would reach now: a modal box first, then the focus.
QWidget* OperatorTarget();
// Delivers the action as real input events to OperatorTarget().
void DeliverOperatorAction(const OperatorAction& action);

// Plays the actions on the Qt event loop, timed from the moment it is called.
void PlayOperatorScript(const QList<OperatorAction>& actions);

} // namespace tallix
