#pragma once

#include <QString>

namespace tallix {

// Who the running program is, as logs and error reports name it. Its identity is
// "vote" whatever the binary is called: the system's behaviour keys off that name.
struct AppInfo {
    QString exeName = QStringLiteral("vote");
    int major = 4;
    int minor = 2;
    int revision = 7;
    QString folder;   // the program's own folder, no trailing separator
    qint64 processId = 0;

    static AppInfo forThisProcess();
};

} // namespace tallix
