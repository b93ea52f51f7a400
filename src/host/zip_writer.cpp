#include "zip_writer.h"

#include "zip_source.h"

#include <zlib.h>

#include <algorithm>
#include <limits>

namespace tallix::host {

namespace {

constexpr quint32 kLocalHeader = 0x04034b50;
constexpr quint32 kCentralHeader = 0x02014b50;
constexpr quint32 kEndOfDirectory = 0x06054b50;
constexpr qint64 kLocalHeaderSize = 30;
constexpr qint64 kCentralHeaderSize = 46;
constexpr qint64 kEndSize = 22;
constexpr quint16 kStore = 0;
constexpr quint16 kDeflate = 8;
constexpr quint16 kUtf8Name = 0x0800;
constexpr quint16 kEncrypted = 0x0001;
constexpr quint16 kDeflateOptions = 0x0006;
// 1980-01-01 12:00 for every entry: equal packages give equal files.
constexpr quint16 kDosTime = 12 << 11;
constexpr quint16 kDosDate = (0 << 9) | (1 << 5) | 1;
// Beyond these a zip needs its 64-bit extensions, which this writer does not write.
constexpr qint64 kMax32 = 0xFFFFFFFE;
constexpr qint64 kMaxEntries = 0xFFFE; // 0xFFFF in the end record means "see the 64-bit one"
constexpr qint64 kMaxName = 0xFFFF;

constexpr qint64 kStageSize = 1 << 20;
// Data this large is handed to the output as it is, after what is staged.
constexpr qint64 kDirectSize = 256 << 10;

quint16 u16(const uchar* p) { return quint16(p[0] | p[1] << 8); }
quint32 u32(const uchar* p) { return quint32(p[0]) | quint32(p[1]) << 8 | quint32(p[2]) << 16 | quint32(p[3]) << 24; }

void put16(QByteArray& out, quint16 v)
{
    out.append(char(v & 0xFF));
    out.append(char(v >> 8));
}
void put32(QByteArray& out, quint32 v)
{
    put16(out, quint16(v & 0xFFFF));
    put16(out, quint16(v >> 16));
}

bool isAscii(const QByteArray& name)
{
    return std::all_of(name.begin(), name.end(), [](char c) { return uchar(c) < 0x80; });
}

} // namespace

std::vector<StoredEntry> ReadStoredEntries(const ZipSource& zip)
{
    const qint64 n = zip.size();
    if (n < kEndSize)
        return {};
    // The end record is the last thing in the file, after a comment of its stated length.
    const qint64 tailStart = std::max<qint64>(0, n - kEndSize - 0xFFFF);
    const QByteArray tail = zip.read(tailStart, n - tailStart);
    if (tail.size() != n - tailStart)
        return {};
    const auto* t = reinterpret_cast<const uchar*>(tail.constData());
    qint64 end = -1;
    for (qint64 at = tail.size() - kEndSize; at >= 0; --at)
        if (u32(t + at) == kEndOfDirectory && at + kEndSize + u16(t + at + 20) == tail.size()) {
            end = at;
            break;
        }
    if (end < 0 || u16(t + end + 4) != 0 || u16(t + end + 6) != 0)
        return {};
    const qint64 count = u16(t + end + 10);
    const qint64 directorySize = u32(t + end + 12);
    const qint64 directory = u32(t + end + 16);
    // The directory ends where the end record starts, and counts its entries alike on
    // this disk and in all: anything else (a second directory hidden in a comment) is
    // left to the zip library, which decides which one holds.
    if (count == 0xFFFF || u16(t + end + 8) != count || directory + directorySize != tailStart + end)
        return {};
    const QByteArray block = zip.read(directory, directorySize);
    if (block.size() != directorySize)
        return {};
    const auto* p = reinterpret_cast<const uchar*>(block.constData());

    std::vector<StoredEntry> entries;
    entries.reserve(size_t(count));
    qint64 at = 0;
    for (qint64 i = 0; i < count; ++i) {
        if (at + kCentralHeaderSize > directorySize || u32(p + at) != kCentralHeader)
            return {};
        const qint64 nameLength = u16(p + at + 28);
        const qint64 next = at + kCentralHeaderSize + nameLength + u16(p + at + 30) + u16(p + at + 32);
        if (next > directorySize)
            return {};
        StoredEntry e;
        e.versionNeeded = u16(p + at + 6);
        e.flags = u16(p + at + 8);
        e.method = u16(p + at + 10);
        e.crc = u32(p + at + 16);
        e.compressedSize = u32(p + at + 20);
        e.size = u32(p + at + 24);
        e.name = QByteArray(block.constData() + at + kCentralHeaderSize, nameLength);
        const qint64 local = u32(p + at + 42);
        const bool wide = e.compressedSize == 0xFFFFFFFF || e.size == 0xFFFFFFFF || local == 0xFFFFFFFF;
        if (!wide && !(e.flags & kEncrypted) && local + kLocalHeaderSize <= directory) {
            const QByteArray header = zip.read(local, kLocalHeaderSize);
            const auto* h = reinterpret_cast<const uchar*>(header.constData());
            if (header.size() == kLocalHeaderSize && u32(h) == kLocalHeader) {
                e.dataOffset = local + kLocalHeaderSize + u16(h + 26) + u16(h + 28);
                e.copyable = e.dataOffset + e.compressedSize <= directory;
            }
        }
        entries.push_back(std::move(e));
        at = next;
    }
    return entries;
}

bool ZipOutput::copy(const ZipSource& source, qint64 offset, qint64 size)
{
    constexpr qint64 kPiece = 1 << 20;
    for (qint64 done = 0; done < size;) {
        const QByteArray piece = source.read(offset + done, std::min(kPiece, size - done));
        if (piece.isEmpty() || !write(piece.constData(), piece.size()))
            return false;
        done += piece.size();
    }
    return true;
}

// The fields the local and the central header share, from the version needed to the
// length of the (empty) extra field.
void ZipWriter::putEntryFields(QByteArray& out, const Written& w)
{
    put16(out, w.versionNeeded);
    put16(out, w.flags);
    put16(out, w.method);
    put16(out, kDosTime);
    put16(out, kDosDate);
    put32(out, w.crc);
    put32(out, quint32(w.compressedSize));
    put32(out, quint32(w.size));
    put16(out, quint16(w.name.size()));
    put16(out, 0);
}

bool ZipWriter::addStored(const QByteArray& name, const StoredEntry& entry, const ZipSource& zip)
{
    const Written w{name,       entry.crc, entry.compressedSize, entry.size, entry.method,
                    quint16(entry.flags & kDeflateOptions), entry.versionNeeded, 0};
    if (const char* bytes = zip.data())
        return addEntry(w, bytes + entry.dataOffset);
    return addEntry(w, nullptr, &zip, entry.dataOffset);
}

bool ZipWriter::addData(const QByteArray& name, const QByteArray& data, bool store)
{
    if (data.size() > std::numeric_limits<uInt>::max()) {
        failure_ = QStringLiteral("%1 is too large to write").arg(QString::fromUtf8(name));
        return false;
    }
    const auto* in = reinterpret_cast<const Bytef*>(data.constData());
    const quint32 crc = quint32(crc32_z(crc32_z(0, nullptr, 0), in, size_t(data.size())));
    if (store)
        return addEntry({name, crc, data.size(), data.size(), kStore, 0, 10, 0}, data.constData());

    z_stream z{};
    // Raw deflate: the zip's own headers stand where zlib's would.
    if (deflateInit2(&z, Z_DEFAULT_COMPRESSION, Z_DEFLATED, -MAX_WBITS, 8, Z_DEFAULT_STRATEGY) != Z_OK) {
        failure_ = QStringLiteral("cannot compress %1").arg(QString::fromUtf8(name));
        return false;
    }
    QByteArray packed(qsizetype(deflateBound(&z, uLong(data.size()))), Qt::Uninitialized);
    z.next_in = const_cast<Bytef*>(in);
    z.avail_in = uInt(data.size());
    z.next_out = reinterpret_cast<Bytef*>(packed.data());
    z.avail_out = uInt(packed.size());
    const int result = deflate(&z, Z_FINISH);
    packed.truncate(qsizetype(z.total_out));
    deflateEnd(&z);
    if (result != Z_STREAM_END) {
        failure_ = QStringLiteral("cannot compress %1").arg(QString::fromUtf8(name));
        return false;
    }
    return addEntry({name, crc, packed.size(), data.size(), kDeflate, 0, 20, 0}, packed.constData());
}

bool ZipWriter::addEntry(Written w, const char* data, const ZipSource* source, qint64 sourceOffset)
{
    if (!failure_.isEmpty())
        return false;
    if (w.name.size() > kMaxName) {
        failure_ = QStringLiteral("a part name is too long for a zip: %1...").arg(QString::fromUtf8(w.name.left(60)));
        return false;
    }
    if (qint64(written_.size()) >= kMaxEntries || offset_ > kMax32 || w.compressedSize > kMax32 || w.size > kMax32) {
        failure_ = QStringLiteral("the package is too large for a zip without 64-bit extensions");
        return false;
    }
    w.offset = offset_;
    if (!isAscii(w.name))
        w.flags |= kUtf8Name;
    QByteArray header;
    header.reserve(kLocalHeaderSize + w.name.size());
    put32(header, kLocalHeader);
    putEntryFields(header, w);
    header.append(w.name);
    bool ok = put(header.constData(), header.size());
    if (ok && data) {
        ok = put(data, w.compressedSize);
    } else if (ok) {
        ok = flush() && (out_.copy(*source, sourceOffset, w.compressedSize) || failed());
        offset_ += w.compressedSize;
    }
    written_.push_back(std::move(w));
    return ok;
}

QString ZipWriter::finish()
{
    if (!failure_.isEmpty())
        return failure_;
    const qint64 directory = offset_;
    QByteArray block;
    for (const Written& w : written_) {
        block.clear();
        put32(block, kCentralHeader);
        put16(block, 20); // made by: MS-DOS attributes, version 2.0
        putEntryFields(block, w);
        put16(block, 0); // comment
        put16(block, 0); // disk
        put16(block, 0); // internal attributes
        put32(block, 0); // external attributes
        put32(block, quint32(w.offset));
        block.append(w.name);
        if (!put(block.constData(), block.size()))
            return failure_;
    }
    const qint64 directorySize = offset_ - directory;
    if (offset_ > kMax32)
        return failure_ = QStringLiteral("the package is too large for a zip without 64-bit extensions");
    block.clear();
    put32(block, kEndOfDirectory);
    put16(block, 0);
    put16(block, 0);
    put16(block, quint16(written_.size()));
    put16(block, quint16(written_.size()));
    put32(block, quint32(directorySize));
    put32(block, quint32(directory));
    put16(block, 0);
    if (!put(block.constData(), block.size()) || !flush())
        return failure_;
    return {};
}

bool ZipWriter::put(const char* data, qint64 size)
{
    if (!failure_.isEmpty())
        return false;
    offset_ += size;
    if (size >= kDirectSize) {
        if (!flush())
            return false;
        return out_.write(data, size) || failed();
    }
    stage_.append(data, qsizetype(size));
    return stage_.size() < kStageSize || flush();
}

bool ZipWriter::flush()
{
    if (stage_.isEmpty())
        return failure_.isEmpty();
    const bool ok = out_.write(stage_.constData(), stage_.size());
    stage_.resize(0); // keeps its room for what comes next
    return ok || failed();
}

bool ZipWriter::failed()
{
    failure_ = QStringLiteral("the zip could not be written");
    return false;
}

} // namespace tallix::host
