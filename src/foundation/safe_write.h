#pragma once
// The one way every file we replace is written: beside the old one, flushed to disk,
// then renamed over it, so a crash leaves the old file or the new one, never half of one.

#include <QByteArray>
#include <QString>

namespace tallix {

// Returns an empty string on success, else a one-line reason.
QString SafeWriteFile(const QString& path, const QByteArray& bytes);

} // namespace tallix
