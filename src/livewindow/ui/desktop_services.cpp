#include "desktop_services.h"

#include "livewindow/window_placement.h"

#include <QCursor>
#include <QGuiApplication>
#include <QScreen>

namespace tallix {

void InstallDesktopServices()
{
    if (QScreen* s = QGuiApplication::primaryScreen()) {
        const QRect g = s->geometry();
        Desktop().desktop = {g.left(), g.top(), g.left() + g.width(), g.top() + g.height()};
    }
    Desktop().moveCursor = [](int x, int y) { QCursor::setPos(x, y); };
    // Nothing confines the pointer on this platform, so there is nothing to release.
    Desktop().releaseCursorClip = [] {};
}

} // namespace tallix
