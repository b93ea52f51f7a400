#include "host/package.h"
#include "host/zip_source.h"
#include "host/zip_writer.h"
#include "support/qt_print.h"

#include <QTemporaryDir>
#include <gtest/gtest.h>
#include <zip.h>

#include <map>

using namespace tallix::host;

namespace {

struct Entry {
    QByteArray name;
    QByteArray data;
    bool store;
};

const std::vector<Entry> kEntries = {
    {"[Content_Types].xml", QByteArray("<Types/>").repeated(50), false},
    {"ppt/media/image1.png", QByteArray("\x89PNG not really", 15), true},
    {"ppt/empty.xml", QByteArray(), false},
    {"ppt/Ünïcode name.xml", "<a>ä</a>", false},
    {"ppt/media/large.bin", QByteArray("0123456789abcdef").repeated(32 << 10), true}, // handed over whole
};

struct Collected : ZipOutput {
    QByteArray bytes;
    bool write(const char* data, qint64 size) override
    {
        bytes.append(data, qsizetype(size));
        return true;
    }
};

struct Refusing : ZipOutput {
    int calls = 0;
    bool write(const char*, qint64) override
    {
        ++calls;
        return false;
    }
};

QByteArray writeAll(const std::vector<Entry>& entries)
{
    Collected out;
    ZipWriter writer(out);
    for (const Entry& e : entries)
        EXPECT_TRUE(writer.addData(e.name, e.data, e.store));
    EXPECT_EQ(writer.finish(), QString());
    return out.bytes;
}

// What the zip library reads back: name -> (content, method).
std::map<QByteArray, std::pair<QByteArray, int>> readWithLibzip(const QByteArray& zipBytes)
{
    std::map<QByteArray, std::pair<QByteArray, int>> out;
    zip_error_t error;
    zip_error_init(&error);
    zip_source_t* src = zip_source_buffer_create(zipBytes.constData(), zip_uint64_t(zipBytes.size()), 0, &error);
    zip_t* archive = src ? zip_open_from_source(src, ZIP_RDONLY | ZIP_CHECKCONS, &error) : nullptr;
    zip_error_fini(&error);
    if (!archive) {
        ADD_FAILURE() << "libzip could not open the zip";
        return out;
    }
    for (zip_int64_t i = 0; i < zip_get_num_entries(archive, 0); ++i) {
        zip_stat_t st;
        zip_stat_index(archive, zip_uint64_t(i), 0, &st);
        QByteArray data(qsizetype(st.size), '\0');
        zip_file_t* f = zip_fopen_index(archive, zip_uint64_t(i), 0);
        EXPECT_EQ(zip_fread(f, data.data(), st.size), zip_int64_t(st.size)) << st.name;
        zip_fclose(f);
        out[QByteArray(st.name)] = {data, int(st.comp_method)};
    }
    zip_discard(archive);
    return out;
}

TEST(ZipWriter, WritesWhatTheZipLibraryReadsAndCopiesStoredEntriesToTheSameBytes)
{
    const QByteArray first = writeAll(kEntries);
    const auto read = readWithLibzip(first);
    ASSERT_EQ(read.size(), kEntries.size());
    for (const Entry& e : kEntries) {
        EXPECT_EQ(read.at(e.name).first, e.data) << e.name.constData();
        EXPECT_EQ(read.at(e.name).second, e.store ? ZIP_CM_STORE : ZIP_CM_DEFLATE) << e.name.constData();
    }

    const auto source = ZipSource::fromBytes(first);
    const std::vector<StoredEntry> stored = ReadStoredEntries(*source);
    ASSERT_EQ(stored.size(), kEntries.size());
    Collected second;
    ZipWriter copier(second);
    for (const StoredEntry& e : stored) {
        EXPECT_TRUE(e.copyable) << e.name.constData();
        copier.addStored(e.name, e, *source);
    }
    EXPECT_EQ(copier.finish(), QString());
    EXPECT_EQ(second.bytes, first);
}

TEST(ZipWriter, ADirectoryItCannotReadSimplyGivesNoEntriesOrEntriesNotToCopy)
{
    const QByteArray good = writeAll(kEntries);
    const qsizetype end = good.lastIndexOf("PK\x05\x06");
    const qsizetype firstLocal = 0;
    struct Case {
        const char* name;
        std::function<QByteArray()> bytes;
        qsizetype entries;
        int notCopyable; // index of the entry that may not be copied, or -1
    } cases[] = {
        {"empty", [] { return QByteArray(); }, 0, -1},
        {"two bytes", [] { return QByteArray("PK"); }, 0, -1},
        {"one byte short", [&] { return good.chopped(1); }, 0, -1},
        {"junk after the end", [&] { return good + "junk"; }, 0, -1},
        {"directory beyond its end", [&] {
             QByteArray b = good;
             b[end + 16] = char(0xFF);
             b[end + 17] = char(0xFF);
             return b;
         }, 0, -1},
        {"counts that disagree", [&] {
             QByteArray b = good;
             b[end + 8] = char(b[end + 8] + 1);
             return b;
         }, 0, -1},
        {"a gap before the end record", [&] {
             QByteArray b = good;
             b[end + 12] = char(b[end + 12] - 1);
             return b;
         }, 0, -1},
        {"a broken local header", [&] {
             QByteArray b = good;
             b[firstLocal] = 'X';
             return b;
         }, qsizetype(kEntries.size()), 0},
        {"an encrypted entry", [&] {
             QByteArray b = good;
             const qsizetype central = b.indexOf("PK\x01\x02");
             b[central + 8] = char(b[central + 8] | 1);
             return b;
         }, qsizetype(kEntries.size()), 0},
    };
    for (const Case& c : cases) {
        const std::vector<StoredEntry> entries = ReadStoredEntries(*ZipSource::fromBytes(c.bytes()));
        ASSERT_EQ(qsizetype(entries.size()), c.entries) << c.name;
        for (size_t i = 0; i < entries.size(); ++i)
            EXPECT_EQ(entries[i].copyable, int(i) != c.notCopyable) << c.name << " " << i;
    }
}

TEST(ZipWriter, AFailingOutputIsReportedAndNothingMoreIsWritten)
{
    Refusing out;
    ZipWriter writer(out);
    // Large enough to go to the output at once.
    EXPECT_FALSE(writer.addData("big.bin", QByteArray(1 << 20, 'x'), true));
    EXPECT_FALSE(writer.addData("next.xml", "<a/>", false));
    EXPECT_EQ(writer.finish(), "the zip could not be written");
    EXPECT_EQ(out.calls, 1);

    QTemporaryDir dir;
    Package package = Package::fromZip(writeAll(kEntries));
    EXPECT_FALSE(package.writeZipFile(dir.filePath("no/such/folder/deck.pptx")).isEmpty());
}

TEST(ZipWriter, APackageFromAZipItCannotCopyFromIsWrittenAfreshAndWhole)
{
    // Junk after the end: the zip library still reads it, the copier does not.
    Package package = Package::fromZip(writeAll(kEntries) + "junk");
    const auto read = readWithLibzip(package.toZip());
    ASSERT_EQ(read.size(), kEntries.size());
    for (const Entry& e : kEntries)
        EXPECT_EQ(read.at(e.name).first, e.data) << e.name.constData();
}

TEST(ZipWriter, ADeckReadFromAFileIsWrittenFromTheFileAsItWasOpened)
{
    QTemporaryDir dir;
    const QString deck = dir.filePath("deck.pptx");
    const auto writeFile = [](const QString& path, const QByteArray& bytes) {
        QFile f(path);
        ASSERT_TRUE(f.open(QIODevice::WriteOnly));
        f.write(bytes);
    };
    writeFile(deck, writeAll(kEntries));
    Package package = Package::fromFile(deck);
    // Another writer renames a new deck over the path: what was read stays readable.
    writeFile(dir.filePath("other.pptx"), writeAll({{"[Content_Types].xml", "<Other/>", false}}));
    ASSERT_TRUE(QFile::remove(deck));
    ASSERT_TRUE(QFile::rename(dir.filePath("other.pptx"), deck));

    const QString copy = dir.filePath("copy.pptx");
    EXPECT_EQ(package.writeZipFile(copy), QString());
    QFile f(copy);
    ASSERT_TRUE(f.open(QIODevice::ReadOnly));
    const auto read = readWithLibzip(f.readAll());
    ASSERT_EQ(read.size(), kEntries.size());
    for (const Entry& e : kEntries)
        EXPECT_EQ(read.at(e.name).first, e.data) << e.name.constData();
    EXPECT_EQ(package.bytes("ppt/media/image1.png"), kEntries[1].data);
}

TEST(ZipWriter, ADeckWrittenOverInPlaceIsNotReadAgain)
{
    QTemporaryDir dir;
    const QString deck = dir.filePath("deck.pptx");
    QFile f(deck);
    ASSERT_TRUE(f.open(QIODevice::WriteOnly));
    f.write(writeAll(kEntries));
    f.close();
    Package package = Package::fromFile(deck);
    // The same file, rewritten where it lies (as a copy over it does).
    ASSERT_TRUE(f.open(QIODevice::WriteOnly | QIODevice::Truncate));
    f.write(writeAll({{"[Content_Types].xml", "<Other/>", false}}));
    f.close();

    try {
        package.toZip();
        ADD_FAILURE() << "the zip was built from a file written over";
    } catch (const PackageError& e) {
        EXPECT_TRUE(e.message().contains("written over")) << e.message().toStdString();
    }
    EXPECT_NE(package.writeZipFile(dir.filePath("copy.pptx")), QString());
}

} // namespace
