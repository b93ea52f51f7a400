#include "safe_write.h"

#include <QCoreApplication>
#include <QFile>
#include <QFileInfo>
#include <QSaveFile>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <fcntl.h>
#include <unistd.h>

namespace tallix {

QString SafeWriteFile(const QString& path, const QByteArray& bytes)
{
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly))
        return QStringLiteral("cannot write %1: %2").arg(path, file.errorString());
    if (file.write(bytes) != bytes.size()) {
        const QString reason = file.errorString();
        file.cancelWriting();
        return QStringLiteral("cannot write %1: %2").arg(path, reason);
    }
    // QSaveFile flushes and syncs the temporary file before it renames it over the target.
    if (!file.commit())
        return QStringLiteral("cannot replace %1: %2").arg(path, file.errorString());
    return {};
}

namespace {

bool syncPath(const QString& path, int flags)
{
    const int fd = ::open(QFile::encodeName(path).constData(), flags);
    if (fd < 0)
        return false;
    const bool ok = ::fsync(fd) == 0;
    ::close(fd);
    return ok;
}

} // namespace

QString SafeWriteFileWith(const QString& path, const std::function<QString(const QString& tempPath)>& writeTo)
{
    const QFileInfo target(path);
    const QString temp = target.absolutePath() + "/." + target.fileName() +
                         QStringLiteral(".tmp-%1").arg(QCoreApplication::applicationPid());
    QFile::remove(temp);
    if (const QString failure = writeTo(temp); !failure.isEmpty()) {
        QFile::remove(temp);
        return QStringLiteral("cannot write %1: %2").arg(path, failure);
    }
    if (!syncPath(temp, O_RDONLY)) {
        const QString reason = QString::fromLocal8Bit(std::strerror(errno));
        QFile::remove(temp);
        return QStringLiteral("cannot write %1: %2").arg(path, reason);
    }
    if (std::rename(QFile::encodeName(temp).constData(), QFile::encodeName(path).constData()) != 0) {
        const QString reason = QString::fromLocal8Bit(std::strerror(errno));
        QFile::remove(temp);
        return QStringLiteral("cannot replace %1: %2").arg(path, reason);
    }
    // The rename itself must reach the disk for the new file to be the one found after a crash.
    syncPath(target.absolutePath(), O_RDONLY | O_DIRECTORY);
    return {};
}

} // namespace tallix
