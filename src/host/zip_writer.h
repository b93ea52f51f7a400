#pragma once
// Zip output for packages, written front to back and never seeked back over, so a
// commit streams into its file in a few large writes. Entries unchanged since the zip
// was read go across as the bytes they are stored as, with no inflating or CRC pass.

#include <QByteArray>
#include <QString>

#include <functional>
#include <vector>

namespace tallix::host {

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
std::vector<StoredEntry> ReadStoredEntries(const QByteArray& zip);

class ZipWriter {
public:
    // Takes the zip's bytes in order; false when they could not be written.
    using Output = std::function<bool(const char* data, qint64 size)>;

    explicit ZipWriter(Output out) : out_(std::move(out)) {}

    // An entry copied as stored in `zip` (one of ReadStoredEntries'), under `name`.
    bool addStored(const QByteArray& name, const StoredEntry& entry, const QByteArray& zip);
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
    bool addEntry(Written entry, const char* data);
    bool put(const char* data, qint64 size);
    bool flush();

    Output out_;
    std::vector<Written> written_;
    QByteArray stage_;   // headers and small entries, gathered into one write
    qint64 offset_ = 0;
    QString failure_;
};

} // namespace tallix::host
