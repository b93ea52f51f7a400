#include "operator_script.h"

#include <QApplication>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QTimer>
#include <QWidget>

namespace tallix {

namespace {

struct NamedKey {
    const char* name;
    int key;
    const char* text;
};

const NamedKey kNamedKeys[] = {
    {"Enter", Qt::Key_Return, "\r"}, {"Space", Qt::Key_Space, " "},     {"Escape", Qt::Key_Escape, "\x1b"},
    {"Esc", Qt::Key_Escape, "\x1b"}, {"Left", Qt::Key_Left, ""},         {"Right", Qt::Key_Right, ""},
    {"Up", Qt::Key_Up, ""},          {"Down", Qt::Key_Down, ""},         {"PageUp", Qt::Key_PageUp, ""},
    {"PageDown", Qt::Key_PageDown, ""}, {"Backspace", Qt::Key_Backspace, "\b"}, {"F1", Qt::Key_F1, ""},
};

} // namespace

bool ParseOperatorKey(const QString& keyName, OperatorAction& action)
{
    QString name = keyName;
    action.modifiers = Qt::NoModifier;
    for (;;) {
        if (name.startsWith("Ctrl+", Qt::CaseInsensitive) && name.size() > 5) {
            action.modifiers |= Qt::ControlModifier;
            name = name.mid(5);
        } else if (name.startsWith("Alt+", Qt::CaseInsensitive) && name.size() > 4) {
            action.modifiers |= Qt::AltModifier;
            name = name.mid(4);
        } else {
            break;
        }
    }
    for (const NamedKey& k : kNamedKeys)
        if (name.compare(QLatin1String(k.name), Qt::CaseInsensitive) == 0) {
            action.key = k.key;
            action.text = QString::fromLatin1(k.text);
            return true;
        }
    if (name.size() != 1)
        return false;
    const QChar c = name[0];
    action.text = QString(c);
    action.key = c.isLetter() ? Qt::Key_A + (c.toUpper().unicode() - 'A') : c.unicode();
    // "Q" alone is a shifted key; with Ctrl or Alt the letter names the key, whatever its case.
    if (c.isUpper() && action.modifiers == Qt::NoModifier)
        action.modifiers |= Qt::ShiftModifier;
    // Control combinations type a control character, as a keyboard does.
    if (action.modifiers & Qt::ControlModifier && c.isLetter())
        action.text = QString(QChar(c.toUpper().unicode() - 'A' + 1));
    return true;
}

bool ParseOperatorScript(const QString& script, QList<OperatorAction>& actions, QString& error)
{
    const QStringList lines = script.split('\n');
    for (int i = 0; i < lines.size(); ++i) {
        const QString line = lines[i].trimmed();
        if (line.isEmpty() || line.startsWith('#'))
            continue;
        const QStringList parts = line.split(' ', Qt::SkipEmptyParts);
        OperatorAction a;
        bool ok = false;
        a.at = parts[0].toDouble(&ok);
        const auto fail = [&](const QString& why) {
            error = QStringLiteral("line %1: %2").arg(i + 1).arg(why);
            return false;
        };
        if (!ok || a.at < 0)
            return fail("expected a time in seconds, got \"" + parts[0] + "\"");
        if (parts.size() == 2 && parts[1] == "click") {
            a.click = true;
        } else if (parts.size() == 3 && parts[1] == "key") {
            if (!ParseOperatorKey(parts[2], a))
                return fail("unknown key \"" + parts[2] + "\"");
        } else {
            return fail("expected \"<seconds> key <KEY>\" or \"<seconds> click\"");
        }
        actions.append(a);
    }
    return true;
}

QWidget* OperatorTarget()
{
    if (QWidget* modal = QApplication::activeModalWidget())
        return modal;
    if (QWidget* focus = QApplication::focusWidget())
        return focus;
    if (QWidget* active = QApplication::activeWindow())
        return active;
    // Offscreen there may be no active window: the last shown top-level one stands in.
    const QWidgetList tops = QApplication::topLevelWidgets();
    for (auto it = tops.crbegin(); it != tops.crend(); ++it)
        if ((*it)->isVisible())
            return *it;
    return nullptr;
}

void DeliverOperatorAction(const OperatorAction& a)
{
    QWidget* target = OperatorTarget();
    if (!target)
        return;
    if (a.click) {
        const QPointF at(target->width() / 2.0, target->height() / 2.0);
        const QPointF global = target->mapToGlobal(at);
        QMouseEvent press(QEvent::MouseButtonPress, at, global, Qt::LeftButton, Qt::LeftButton, Qt::NoModifier);
        QApplication::sendEvent(target, &press);
        QMouseEvent release(QEvent::MouseButtonRelease, at, global, Qt::LeftButton, Qt::NoButton, Qt::NoModifier);
        QApplication::sendEvent(target, &release);
        return;
    }
    QKeyEvent press(QEvent::KeyPress, a.key, a.modifiers, a.text);
    QApplication::sendEvent(target, &press);
    // The press may have closed the window; the release goes to whatever has the keys now.
    if (QWidget* now = OperatorTarget()) {
        QKeyEvent release(QEvent::KeyRelease, a.key, a.modifiers, a.text);
        QApplication::sendEvent(now, &release);
    }
}

void PlayOperatorScript(const QList<OperatorAction>& actions)
{
    for (const OperatorAction& a : actions)
        QTimer::singleShot(int(a.at * 1000), qApp, [a] { DeliverOperatorAction(a); });
}

} // namespace tallix
