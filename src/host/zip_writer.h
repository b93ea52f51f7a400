#pragma once
// Zip output for packages, written front to back and never seeked back over, so a
// commit streams into its file in a few large writes. Entries unchanged since the zip
// was read go across as the bytes they are stored as, with no inflating or CRC pass.

#include <QByteArray>
#include <QString>

#include <vector>

namespace tallix::host {

class ZipSource;

// One entry of a zip held in memory, as its central directory gives it.
struct StoredEntry {
    QByteArray name;            // as stored
    qint64 dataOffset = 0;      // where its compressed bytes start in the zip
    qint64 compressedSize = 0;
    qint64 size = 0;
    quint32 crc = 0;
    quint16 method = 0;
    quint16 flags = 0;
    quint16 versionNeeded = 0;
    // False for what cannot go across as stored (encrypted, 64-bit sizes, bounds that do
    // not hold): such an entry is read through the zip library and written afresh.
    bool copyable = false;
};

// The entries of `zip` in central directory order, the order the zip library numbers
// them in; empty when the directory is not one this simple reader takes.
std::vector<StoredEntry> ReadStoredEntries(const ZipSource& zip);

// Where a zip goes: takes its bytes in order; false when they could not be written.
class ZipOutput {
public:
    virtual ~ZipOutput() = default;
    virtual bool write(const char* data, qint64 size) = 0;
    // `size` bytes of `source` from `offset`, read and written in pieces unless the
    // output knows a shorter way.
    virtual bool copy(const ZipSource& source, qint64 offset, qint64 size);
};

class ZipWriter {
public:
    explicit ZipWriter(ZipOutput& out) : out_(out) {}

    // An entry copied as stored in `zip` (one of ReadStoredEntries'), under `name`.
    bool addStored(const QByteArray& name, const StoredEntry& entry, const ZipSource& zip);
    // New content, deflated unless `store`.
    bool addData(const QByteArray& name, const QByteArray& data, bool store);
    // Ends the zip with its central directory; "" or why the zip is not whole.
    QString finish();

private:
    struct Written {
        QByteArray name;
        quint32 crc;
        qint64 compressedSize;
        qint64 size;
        quint16 method;
        quint16 flags;
        quint16 versionNeeded;
        qint64 offset;
    };
    static void putEntryFields(QByteArray& out, const Written& w);
    // The entry's local header, then its data: `data`, or `size` bytes of `source`.
    bool addEntry(Written entry, const char* data, const ZipSource* source = nullptr, qint64 sourceOffset = 0);
    bool put(const char* data, qint64 size);
    bool flush();
    bool failed();

    ZipOutput& out_;
    std::vector<Written> written_;
    QByteArray stage_;   // headers and small entries, gathered into one write
    qint64 offset_ = 0;
    QString failure_;
};

} // namespace tallix::host
