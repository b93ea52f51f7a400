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

    // False once the file has been written over in place since it was opened: its
    // bytes are no longer the ones read, and nothing more is read from it.
    bool unchanged() const;

private:
    ZipSource() = default;
    struct Stamp {
        qint64 size = -1;
        qint64 mtimeNs = -1; // not the change time: a rename over the path changes that
        bool operator==(const Stamp&) const = default;
    };
    Stamp stamp() const;

    QByteArray bytes_;
    std::unique_ptr<QFile> file_;
    qint64 size_ = 0;
    Stamp opened_;
};

} // namespace tallix::host
