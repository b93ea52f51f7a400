#pragma once
// The one way every file we replace is written: beside the old one, flushed to disk,
// then renamed over it, so a crash leaves the old file or the new one, never half of one.
// The new file keeps the old one's permissions; a temporary file that a killed writer
// left beside the target goes at the next write.

#include <QByteArray>
#include <QString>

#include <functional>

namespace tallix {

// Returns an empty string on success, else a one-line reason.
QString SafeWriteFile(const QString& path, const QByteArray& bytes);

// The same for a file that another library writes itself: `writeTo` fills the file at
// the path it is given (beside the target) and returns "" or a reason; the file is then
// flushed to disk and renamed over the target. A large file never passes through memory.
QString SafeWriteFileWith(const QString& path, const std::function<QString(const QString& tempPath)>& writeTo);

} // namespace tallix
