#include "app_info.h"

#include <QCoreApplication>

namespace tallix {

AppInfo AppInfo::forThisProcess()
{
    AppInfo a;
    if (QCoreApplication::instance()) {
        a.folder = QCoreApplication::applicationDirPath();
        a.processId = QCoreApplication::applicationPid();
    }
    return a;
}

} // namespace tallix
