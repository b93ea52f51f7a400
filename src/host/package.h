#pragma once
// An Open Packaging Conventions zip held in memory: its parts in their original
// order, the content types and the relationships. A part that nobody parsed and
// changed is written back with exactly the bytes it was read with.

#include <QByteArray>
#include <QList>
#include <QMap>
#include <QString>
#include <QStringList>
#include <memory>
#include <pugixml.hpp>
#include <stdexcept>
#include <vector>

struct zip;

namespace tallix::host {

class ZipOutput;
class ZipSource;

// Malformed input: one clear message, nothing written.
class PackageError : public std::runtime_error {
public:
    explicit PackageError(const QString& message)
        : std::runtime_error(message.toStdString()), message_(message) {}
    const QString& message() const { return message_; }

private:
    QString message_;
};

// Caps against a zip bomb: a deck of real slides stays far below either.
struct PackageLimits {
    qint64 maxTotalUncompressed = qint64(2) * 1024 * 1024 * 1024;
    qint64 maxEntries = 100000;
    // Entries above ratioFloor bytes may inflate at most maxRatio times.
    qint64 ratioFloor = 4 * 1024 * 1024;
    double maxRatio = 200.0;
};

namespace Rel {
inline constexpr const char* OfficeDocument =
    "http://schemas.openxmlformats.org/officeDocument/2006/relationships/officeDocument";
inline constexpr const char* Slide =
    "http://schemas.openxmlformats.org/officeDocument/2006/relationships/slide";
inline constexpr const char* SlideLayout =
    "http://schemas.openxmlformats.org/officeDocument/2006/relationships/slideLayout";
inline constexpr const char* SlideMaster =
    "http://schemas.openxmlformats.org/officeDocument/2006/relationships/slideMaster";
inline constexpr const char* NotesSlide =
    "http://schemas.openxmlformats.org/officeDocument/2006/relationships/notesSlide";
inline constexpr const char* NotesMaster =
    "http://schemas.openxmlformats.org/officeDocument/2006/relationships/notesMaster";
inline constexpr const char* Theme =
    "http://schemas.openxmlformats.org/officeDocument/2006/relationships/theme";
inline constexpr const char* Tags =
    "http://schemas.openxmlformats.org/officeDocument/2006/relationships/tags";
inline constexpr const char* Image =
    "http://schemas.openxmlformats.org/officeDocument/2006/relationships/image";
} // namespace Rel

namespace Ns {
inline constexpr const char* P = "http://schemas.openxmlformats.org/presentationml/2006/main";
inline constexpr const char* A = "http://schemas.openxmlformats.org/drawingml/2006/main";
inline constexpr const char* R =
    "http://schemas.openxmlformats.org/officeDocument/2006/relationships";
} // namespace Ns

struct Relationship {
    QString id;
    QString type;
    QString target;   // as written
    bool external = false;
};

class Package {
public:
    Package() = default;
    Package(Package&&) = default;
    Package& operator=(Package&&) = default;

    static Package fromZip(const QByteArray& zip, const PackageLimits& limits = {});
    static Package fromFile(const QString& path, const PackageLimits& limits = {});
    QByteArray toZip() const;
    // Writes the package as a zip file at `path`; "" or the reason it could not.
    QString writeZipFile(const QString& path) const;

    QStringList partNames() const { return order_; }
    bool has(const QString& name) const { return parts_.contains(name); }
    QByteArray bytes(const QString& name) const; // serialises a changed XML part
    // The parsed part, kept; throws PackageError on broken XML.
    pugi::xml_document& xml(const QString& name);
    void touch(const QString& name); // the parsed part changed and must be re-serialised
    void setBytes(const QString& name, const QByteArray& bytes);
    void setXml(const QString& name, const QByteArray& text); // parses now
    void remove(const QString& name);
    bool changed(const QString& name) const;

    // Content types.
    QString contentType(const QString& name);
    void setOverride(const QString& name, const QString& type);
    void ensureDefault(const QString& extension, const QString& type);

    // Relationships of a part ("" for the package's own).
    static QString relsName(const QString& part);
    QList<Relationship> rels(const QString& part);
    QString resolve(const QString& part, const QString& target) const;
    QString target(const QString& part, const QString& rid); // part name, "" if none
    QString addRel(const QString& part, const QString& type, const QString& targetPart);
    void removeRel(const QString& part, const QString& rid);
    // A free name such as ppt/tags/tag7.xml for the pattern ppt/tags/tag%1.xml.
    QString freeName(const QString& pattern) const;

private:
    struct Part {
        QByteArray raw;
        std::shared_ptr<pugi::xml_document> doc;
        bool dirty = false;
        qint64 sourceIndex = -1; // entry of the zip it was read from, while unchanged
        qint64 size = 0;
        bool loaded = true;      // false: still only in the source zip
    };
    static Package fromSource(std::shared_ptr<const ZipSource> source, const PackageLimits& limits);
    // The package as a zip, handed to `output` front to back; "" or why it is not whole.
    QString writeZip(ZipOutput& output) const;
    // The zip as read: unchanged entries are copied from it still compressed.
    std::shared_ptr<const ZipSource> source_;
    QStringList order_;
    QMap<QString, Part> parts_;
};

// Serialises a document the way the parts are written.
QByteArray XmlBytes(const pugi::xml_document& doc);
// Parse options that keep what we do not understand as it was.
unsigned XmlParseOptions();

} // namespace tallix::host
