#include "safe_write.h"

#include <QSaveFile>

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

} // namespace tallix
