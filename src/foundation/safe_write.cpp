#include "safe_write.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <csignal>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace tallix {

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

// What a writer that was killed mid-write left beside the target: its own temporary
// file, named for its process. Those of processes still running are theirs to finish.
void removeStaleTemporaries(const QFileInfo& target)
{
    const QString prefix = "." + target.fileName() + ".tmp-";
    const QDir dir = target.absoluteDir();
    for (const QString& name : dir.entryList({prefix + "*"}, QDir::Files | QDir::Hidden)) {
        bool ok = false;
        const qint64 pid = name.mid(prefix.size()).toLongLong(&ok);
        if (ok && pid > 0 && pid != QCoreApplication::applicationPid() && ::kill(pid_t(pid), 0) != 0 && errno == ESRCH)
            QFile::remove(dir.filePath(name));
    }
}

} // namespace

QString SafeWriteFile(const QString& path, const QByteArray& bytes)
{
    return SafeWriteFileWith(path, [&bytes](const QString& temp) -> QString {
        QFile file(temp);
        if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate))
            return file.errorString();
        if (file.write(bytes) != bytes.size() || !file.flush())
            return file.errorString();
        return {};
    });
}

QString SafeWriteFileWith(const QString& path, const std::function<QString(const QString& tempPath)>& writeTo)
{
    const QFileInfo target(path);
    const QString temp = target.absolutePath() + "/." + target.fileName() +
                         QStringLiteral(".tmp-%1").arg(QCoreApplication::applicationPid());
    removeStaleTemporaries(target);
    QFile::remove(temp);
    if (const QString failure = writeTo(temp); !failure.isEmpty()) {
        QFile::remove(temp);
        return QStringLiteral("cannot write %1: %2").arg(path, failure);
    }
    // The new file keeps the old one's permissions, as a file edited in place would.
    if (struct stat st; ::stat(QFile::encodeName(path).constData(), &st) == 0)
        ::chmod(QFile::encodeName(temp).constData(), st.st_mode & 07777);
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
