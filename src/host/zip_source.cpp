#include "zip_source.h"

#include "package.h"

#include <zip.h>

#include <cerrno>
#include <cstdio>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace tallix::host {

std::shared_ptr<const ZipSource> ZipSource::openFile(const QString& path)
{
    auto file = std::make_unique<QFile>(path);
    if (!file->open(QIODevice::ReadOnly | QIODevice::Unbuffered))
        throw PackageError(QStringLiteral("cannot open %1: %2").arg(path, file->errorString()));
    std::shared_ptr<ZipSource> source(new ZipSource);
    source->size_ = file->size();
    source->file_ = std::move(file);
    source->opened_ = source->stamp();
    return source;
}

std::shared_ptr<const ZipSource> ZipSource::fromBytes(const QByteArray& bytes)
{
    std::shared_ptr<ZipSource> source(new ZipSource);
    source->bytes_ = bytes;
    source->size_ = bytes.size();
    return source;
}

ZipSource::Stamp ZipSource::stamp() const
{
    struct stat st;
    if (!file_ || ::fstat(file_->handle(), &st) != 0)
        return {};
    return {qint64(st.st_size), qint64(st.st_mtim.tv_sec) * 1000000000 + st.st_mtim.tv_nsec};
}

bool ZipSource::unchanged() const
{
    return !file_ || stamp() == opened_;
}

QByteArray ZipSource::read(qint64 offset, qint64 size) const
{
    offset = qBound<qint64>(0, offset, size_);
    size = qBound<qint64>(0, size, size_ - offset);
    if (!file_)
        return bytes_.mid(offset, size);
    if (!unchanged())
        return {};
    QByteArray out(size, Qt::Uninitialized);
    qint64 got = 0;
    while (got < size) {
        const ssize_t n = ::pread(file_->handle(), out.data() + got, size_t(size - got), off_t(offset + got));
        if (n < 0 && errno == EINTR)
            continue;
        if (n <= 0)
            break;
        got += n;
    }
    out.truncate(got);
    return out;
}

zip* ZipSource::openArchive(QString* reason) const
{
    if (!unchanged()) {
        if (reason)
            *reason = QStringLiteral("the file was written over since it was read");
        return nullptr;
    }
    zip_error_t error;
    zip_error_init(&error);
    zip_source_t* source = nullptr;
    if (!file_) {
        source = zip_source_buffer_create(bytes_.constData(), zip_uint64_t(size_), 0, &error);
    } else {
        // A descriptor of its own, on the file that was opened (whatever the path now
        // names), so that two archives never share a read position.
        const QByteArray self = "/proc/self/fd/" + QByteArray::number(file_->handle());
        int fd = ::open(self.constData(), O_RDONLY | O_CLOEXEC);
        if (fd < 0)
            fd = ::fcntl(file_->handle(), F_DUPFD_CLOEXEC, 0);
        FILE* stream = fd >= 0 ? ::fdopen(fd, "rb") : nullptr;
        if (!stream) {
            if (fd >= 0)
                ::close(fd);
            zip_error_set(&error, ZIP_ER_OPEN, errno);
        } else if (!(source = zip_source_filep_create(stream, 0, size_, &error))) {
            std::fclose(stream);
        }
    }
    zip_t* archive = source ? zip_open_from_source(source, ZIP_RDONLY, &error) : nullptr;
    if (!archive && source)
        zip_source_free(source);
    if (!archive && reason)
        *reason = QString::fromUtf8(zip_error_strerror(&error));
    zip_error_fini(&error);
    return archive;
}

} // namespace tallix::host
