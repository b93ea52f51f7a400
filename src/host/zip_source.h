#pragma once
// The zip a package was read from: bytes in memory, or a file held open. A deck's
// pictures are most of its size and a vote rarely looks at them, so a file is read
// where it is needed rather than whole at start-up; the open file keeps the bytes as
// they were read even when a new deck is renamed over the path.

#include <QByteArray>
#include <QFile>
#include <QString>

#include <memory>

struct zip;

namespace tallix::host {

class ZipSource {
public:
    // Throws PackageError when the file cannot be opened.
    static std::shared_ptr<const ZipSource> openFile(const QString& path);
    static std::shared_ptr<const ZipSource> fromBytes(const QByteArray& bytes);

    qint64 size() const { return size_; }
    // `size` bytes from `offset`, or fewer where the source ends or cannot be read.
    QByteArray read(qint64 offset, qint64 size) const;
    // The bytes when they are held in memory; nullptr for a file.
    const char* data() const { return file_ ? nullptr : bytes_.constData(); }
    // The open file's descriptor; -1 for bytes in memory.
    int handle() const { return file_ ? file_->handle() : -1; }

    // The zip library over this source, read-only; nullptr and `reason` when it refuses.
    zip* openArchive(QString* reason) const;

private:
    ZipSource() = default;
    QByteArray bytes_;
    std::unique_ptr<QFile> file_;
    qint64 size_ = 0;
};

} // namespace tallix::host
