#include "controller_socket.h"

#include "foundation/environment.h"

#include <QDir>
#include <QFileInfo>
#include <QProcess>

#include <cerrno>
#include <cstring>
#include <sys/stat.h>
#include <unistd.h>

namespace tallix {

QString RuntimeFolder(const Environment& env)
{
    const QString xdg = env.value("XDG_RUNTIME_DIR");
    if (!xdg.isEmpty())
        return QDir::cleanPath(xdg + "/tallix");
    return QString("/tmp/tallix-%1").arg(::getuid());
}

QString ControllerSocketPath(const Environment& env)
{
    const QString explicitPath = env.value("TALLIX_CONTROLLER_SOCKET");
    if (!explicitPath.isEmpty())
        return explicitPath;
    return RuntimeFolder(env) + "/controller.sock";
}

QString EnsurePrivateFolder(const QString& path)
{
    if (path.isEmpty())
        return "no folder given";
    const QByteArray native = QFile::encodeName(path);
    struct stat st {};
    if (::lstat(native.constData(), &st) != 0) {
        if (errno != ENOENT)
            return QString("cannot inspect %1: %2").arg(path, QString::fromLocal8Bit(std::strerror(errno)));
        const QString parent = QFileInfo(path).absolutePath();
        if (!QDir().mkpath(parent))
            return QString("cannot create %1").arg(parent);
        // Another process may win the race to create it; the checks below still apply.
        if (::mkdir(native.constData(), 0700) != 0 && errno != EEXIST)
            return QString("cannot create %1: %2").arg(path, QString::fromLocal8Bit(std::strerror(errno)));
        if (::lstat(native.constData(), &st) != 0)
            return QString("cannot inspect %1: %2").arg(path, QString::fromLocal8Bit(std::strerror(errno)));
    }
    // Under a shared /tmp anyone could have placed the folder first; the socket inside
    // must not become reachable by, or redirected to, someone else.
    if (!S_ISDIR(st.st_mode))
        return QString("%1 exists and is not a folder").arg(path);
    if (st.st_uid != ::getuid())
        return QString("%1 belongs to another user").arg(path);
    if ((st.st_mode & 0777) != 0700 && ::chmod(native.constData(), 0700) != 0)
        return QString("cannot make %1 private: %2").arg(path, QString::fromLocal8Bit(std::strerror(errno)));
    return {};
}

QString ControllerStandInPath(const QString& programFolder)
{
    return QDir(programFolder).filePath("tlxctrl");
}

QString StartControllerStandIn(const QString& programFolder)
{
    const QString program = ControllerStandInPath(programFolder);
    if (!QFileInfo(program).isExecutable())
        return QString("no controller stand-in at %1").arg(program);
    if (!QProcess::startDetached(program, {"--detach"}, programFolder))
        return QString("cannot start %1").arg(program);
    return {};
}

} // namespace tallix
