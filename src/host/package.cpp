#include "package.h"

#include <QDir>
#include <QFile>
#include <QSet>
#include <QUrl>
#include <vector>
#include <zip.h>

#include "zip_source.h"
#include "zip_writer.h"

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <unistd.h>

namespace tallix::host {

namespace {

const QString kContentTypes = QStringLiteral("[Content_Types].xml");

struct StringWriter : pugi::xml_writer {
    QByteArray out;
    void write(const void* data, size_t size) override
    {
        out.append(static_cast<const char*>(data), qsizetype(size));
    }
};


// Already-compressed media gain nothing from deflate; storing them keeps a write fast.
bool storedUncompressed(const QString& name)
{
    static const QStringList packed{".png", ".jpg", ".jpeg", ".gif", ".mp4", ".m4a", ".mp3",
                                    ".wdp", ".jfif", ".zip", ".xlsx", ".docx"};
    for (const QString& ext : packed)
        if (name.endsWith(ext, Qt::CaseInsensitive))
            return true;
    return false;
}

QString normalise(const QString& path)
{
    QStringList out;
    for (const QString& piece : path.split('/')) {
        if (piece.isEmpty() || piece == ".")
            continue;
        if (piece == "..") {
            if (!out.isEmpty())
                out.removeLast();
            continue;
        }
        out << piece;
    }
    return out.join('/');
}

QString folderOf(const QString& part)
{
    const int slash = part.lastIndexOf('/');
    return slash < 0 ? QString() : part.left(slash);
}

} // namespace

unsigned XmlParseOptions()
{
    // Whitespace-only text (a run of one space) is content in slides.
    return pugi::parse_default | pugi::parse_declaration | pugi::parse_ws_pcdata |
           pugi::parse_comments | pugi::parse_pi | pugi::parse_doctype;
}

QByteArray XmlBytes(const pugi::xml_document& doc)
{
    StringWriter writer;
    doc.save(writer, "", pugi::format_raw | pugi::format_no_declaration, pugi::encoding_utf8);
    return writer.out;
}

Package Package::fromFile(const QString& path, const PackageLimits& limits)
{
    std::shared_ptr<const ZipSource> source = ZipSource::openFile(path);
    try {
        return fromSource(std::move(source), limits);
    } catch (const PackageError& e) {
        throw PackageError(QStringLiteral("%1: %2").arg(QDir::toNativeSeparators(path), e.message()));
    }
}

namespace {

// One entry, inflated; reads a byte past the declared size so a lying header is caught.
QByteArray readEntry(zip_t* archive, zip_uint64_t index, const QString& name, qint64 size)
{
    zip_file_t* entry = zip_fopen_index(archive, index, 0);
    if (!entry)
        throw PackageError(QStringLiteral("cannot read zip entry %1 (%2)")
                               .arg(name, QString::fromUtf8(zip_strerror(archive))));
    QByteArray data(size + 1, Qt::Uninitialized);
    qint64 got = 0;
    while (got < data.size()) {
        const zip_int64_t n = zip_fread(entry, data.data() + got, zip_uint64_t(data.size() - got));
        if (n < 0) {
            const QString reason = QString::fromUtf8(zip_file_strerror(entry));
            zip_fclose(entry);
            throw PackageError(QStringLiteral("corrupt zip entry %1 (%2)").arg(name, reason));
        }
        if (n == 0)
            break;
        got += n;
    }
    zip_fclose(entry);
    if (got != size)
        throw PackageError(QStringLiteral("zip entry %1 does not match its declared size").arg(name));
    data.truncate(size);
    return data;
}

// The parts read at once: everything the model parses. Pictures and other media are
// inflated only when asked for, which keeps start-up on a heavy deck short.
bool readEagerly(const QString& name)
{
    return name.endsWith(".xml", Qt::CaseInsensitive) || name.endsWith(".rels", Qt::CaseInsensitive);
}

} // namespace

Package Package::fromZip(const QByteArray& zip, const PackageLimits& limits)
{
    return fromSource(ZipSource::fromBytes(zip), limits);
}

Package Package::fromSource(std::shared_ptr<const ZipSource> source, const PackageLimits& limits)
{
    if (source->read(0, 2) != "PK")
        throw PackageError(QStringLiteral("not a presentation: not a zip file"));
    QString reason;
    zip_t* archive = source->openArchive(&reason);
    if (!archive)
        throw PackageError(QStringLiteral("not a presentation: not a zip file (%1)").arg(reason));
    Package package;
    QString failure;
    try {
        const zip_int64_t count = zip_get_num_entries(archive, 0);
        if (count > limits.maxEntries)
            throw PackageError(QStringLiteral("too many entries in the zip (%1)").arg(count));
        qint64 total = 0;
        for (zip_int64_t i = 0; i < count; ++i) {
            zip_stat_t st;
            if (zip_stat_index(archive, zip_uint64_t(i), 0, &st) != 0)
                throw PackageError(QStringLiteral("unreadable zip entry %1").arg(i));
            const QString name = QString::fromUtf8(st.name);
            if (name.endsWith('/'))
                continue; // folder entries carry nothing
            const qint64 size = qint64(st.size);
            const double ratio = double(size) / double(qMax<zip_uint64_t>(st.comp_size, 1));
            total += size;
            if (total > limits.maxTotalUncompressed)
                throw PackageError(QStringLiteral("refused: the zip inflates beyond %1 bytes")
                                       .arg(limits.maxTotalUncompressed));
            if (size > limits.ratioFloor && ratio > limits.maxRatio)
                throw PackageError(QStringLiteral("refused: entry %1 inflates %2 times (a zip bomb?)")
                                       .arg(name).arg(qint64(ratio)));
            if (!package.parts_.contains(name))
                package.order_ << name;
            Part& part = package.parts_[name];
            part.sourceIndex = i;
            part.size = size;
            part.loaded = readEagerly(name) || name == kContentTypes;
            if (part.loaded)
                part.raw = readEntry(archive, zip_uint64_t(i), name, size);
        }
    } catch (const PackageError& e) {
        failure = e.message();
    }
    zip_discard(archive);
    if (!failure.isEmpty())
        throw PackageError(failure);
    if (!package.has(kContentTypes))
        throw PackageError(QStringLiteral("not a presentation: the zip has no [Content_Types].xml"));
    package.source_ = std::move(source);
    return package;
}

namespace {

// A zip file written through its descriptor: entries copied from a deck file go from
// file to file inside the kernel.
class FileOutput : public ZipOutput {
public:
    explicit FileOutput(const QString& path)
        : fd_(::open(QFile::encodeName(path).constData(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0666))
    {
        if (fd_ < 0)
            error_ = errno;
    }
    ~FileOutput() override { close(); }

    bool write(const char* data, qint64 size) override
    {
        while (size > 0) {
            const ssize_t n = ::write(fd_, data, size_t(size));
            if (n < 0 && errno == EINTR)
                continue;
            if (n <= 0)
                return fail();
            data += n;
            size -= n;
        }
        return true;
    }

    bool copy(const ZipSource& source, qint64 offset, qint64 size) override
    {
        if (!source.unchanged())
            return false;
        loff_t from = offset;
        while (size > 0 && source.handle() >= 0 && kernelCopy_) {
            const ssize_t n = ::copy_file_range(source.handle(), &from, fd_, nullptr, size_t(size), 0);
            if (n < 0 && errno == EINTR)
                continue;
            if (n <= 0) {
                // Not on these file systems, or a source shorter than its directory
                // says: the plain way copies what it can and finds the end.
                kernelCopy_ = false;
                break;
            }
            size -= n;
        }
        return size == 0 || ZipOutput::copy(source, from, size);
    }

    void close()
    {
        if (fd_ >= 0 && ::close(fd_) != 0 && !error_)
            error_ = errno;
        fd_ = -1;
    }
    bool opened() const { return fd_ >= 0; }
    bool hasError() const { return error_ != 0; }
    QString errorText() const { return QString::fromLocal8Bit(std::strerror(error_)); }

private:
    bool fail()
    {
        error_ = errno ? errno : EIO;
        return false;
    }
    int fd_;
    int error_ = 0;
    bool kernelCopy_ = true;
};

class BytesOutput : public ZipOutput {
public:
    QByteArray bytes;
    bool write(const char* data, qint64 size) override
    {
        bytes.append(data, qsizetype(size));
        return true;
    }
};

} // namespace

QString Package::writeZip(ZipOutput& output) const
{
    ZipWriter writer(output);
    const std::vector<StoredEntry> stored = source_ ? ReadStoredEntries(*source_) : std::vector<StoredEntry>{};
    QStringList names = order_;
    // The content types lead, as every writer of these files puts them.
    names.removeAll(kContentTypes);
    names.prepend(kContentTypes);
    try {
        for (const QString& name : names) {
            const auto found = parts_.constFind(name);
            if (found == parts_.constEnd())
                return QStringLiteral("the package has no %1").arg(name);
            const Part& part = *found;
            const QByteArray utf8 = name.toUtf8();
            // An entry nobody changed goes across as it is stored: a large deck's commit
            // then costs little more than a copy.
            const size_t index = size_t(part.sourceIndex);
            const bool asStored = !part.dirty && part.sourceIndex >= 0 && index < stored.size() &&
                                  stored[index].copyable && stored[index].name == utf8 &&
                                  stored[index].size == part.size;
            const bool ok = asStored ? writer.addStored(utf8, stored[index], *source_)
                                     : writer.addData(utf8, bytes(name), storedUncompressed(name));
            if (!ok)
                break;
        }
    } catch (const PackageError& e) {
        return e.message();
    }
    return writer.finish();
}

QString Package::writeZipFile(const QString& path) const
{
    FileOutput file(path);
    if (!file.opened())
        return file.errorText();
    const QString failure = writeZip(file);
    file.close();
    // Where the disk refused, it says why better than the writer can.
    return file.hasError() ? file.errorText() : failure;
}

QByteArray Package::toZip() const
{
    BytesOutput out;
    if (source_)
        out.bytes.reserve(source_->size() + (64 << 10));
    const QString failure = writeZip(out);
    if (!failure.isEmpty())
        throw PackageError(QStringLiteral("cannot build zip: %1").arg(failure));
    return out.bytes;
}

QByteArray Package::bytes(const QString& name) const
{
    auto it = parts_.constFind(name);
    if (it == parts_.constEnd())
        return {};
    if (it->dirty && it->doc)
        return XmlBytes(*it->doc);
    if (!it->loaded && source_) {
        QString reason;
        zip_t* archive = source_->openArchive(&reason);
        if (!archive)
            throw PackageError(QStringLiteral("cannot read %1 again: %2").arg(name, reason));
        QByteArray data;
        try {
            data = readEntry(archive, zip_uint64_t(it->sourceIndex), name, it->size);
        } catch (...) {
            zip_discard(archive);
            throw;
        }
        zip_discard(archive);
        return data;
    }
    return it->raw;
}

pugi::xml_document& Package::xml(const QString& name)
{
    auto it = parts_.find(name);
    if (it == parts_.end())
        throw PackageError(QStringLiteral("the part %1 is missing").arg(name));
    if (!it->doc) {
        if (!it->loaded) {
            it->raw = bytes(name);
            it->loaded = true;
        }
        auto doc = std::make_shared<pugi::xml_document>();
        const pugi::xml_parse_result result =
            doc->load_buffer(it->raw.constData(), size_t(it->raw.size()), XmlParseOptions());
        if (!result)
            throw PackageError(QStringLiteral("broken XML in %1 at byte %2: %3")
                                   .arg(name)
                                   .arg(qint64(result.offset))
                                   .arg(QString::fromUtf8(result.description())));
        it->doc = doc;
    }
    return *it->doc;
}

void Package::touch(const QString& name)
{
    auto it = parts_.find(name);
    if (it != parts_.end() && it->doc)
        it->dirty = true;
}

bool Package::changed(const QString& name) const
{
    auto it = parts_.constFind(name);
    return it != parts_.constEnd() && it->dirty;
}

void Package::setBytes(const QString& name, const QByteArray& bytes)
{
    if (!parts_.contains(name))
        order_ << name;
    Part& part = parts_[name];
    part.raw = bytes;
    part.doc.reset();
    part.dirty = false;
    part.loaded = true;
    part.sourceIndex = -1;
}

void Package::setXml(const QString& name, const QByteArray& text)
{
    setBytes(name, text);
    xml(name);
    parts_[name].dirty = true;
}

void Package::remove(const QString& name)
{
    parts_.remove(name);
    order_.removeAll(name);
    const QString rels = relsName(name);
    if (parts_.contains(rels)) {
        parts_.remove(rels);
        order_.removeAll(rels);
    }
    if (has(kContentTypes)) {
        pugi::xml_document& types = xml(kContentTypes);
        const QByteArray partName = ('/' + name).toUtf8();
        for (pugi::xml_node o : types.document_element().children("Override"))
            if (QByteArray(o.attribute("PartName").value()) == partName) {
                types.document_element().remove_child(o);
                touch(kContentTypes);
                break;
            }
    }
}

QString Package::contentType(const QString& name)
{
    pugi::xml_node root = xml(kContentTypes).document_element();
    const QString partName = '/' + name;
    for (pugi::xml_node o : root.children("Override"))
        if (QString::fromUtf8(o.attribute("PartName").value()).compare(partName, Qt::CaseInsensitive) == 0)
            return QString::fromUtf8(o.attribute("ContentType").value());
    const QString ext = name.section('.', -1);
    for (pugi::xml_node d : root.children("Default"))
        if (QString::fromUtf8(d.attribute("Extension").value()).compare(ext, Qt::CaseInsensitive) == 0)
            return QString::fromUtf8(d.attribute("ContentType").value());
    return {};
}

void Package::setOverride(const QString& name, const QString& type)
{
    pugi::xml_node root = xml(kContentTypes).document_element();
    const QByteArray partName = ('/' + name).toUtf8();
    pugi::xml_node found;
    for (pugi::xml_node o : root.children("Override"))
        if (QByteArray(o.attribute("PartName").value()) == partName)
            found = o;
    if (!found) {
        found = root.append_child("Override");
        found.append_attribute("PartName") = partName.constData();
        found.append_attribute("ContentType");
    }
    found.attribute("ContentType") = type.toUtf8().constData();
    touch(kContentTypes);
}

void Package::ensureDefault(const QString& extension, const QString& type)
{
    pugi::xml_node root = xml(kContentTypes).document_element();
    for (pugi::xml_node d : root.children("Default"))
        if (QString::fromUtf8(d.attribute("Extension").value()).compare(extension, Qt::CaseInsensitive) == 0)
            return;
    // Defaults come before the overrides.
    pugi::xml_node first = root.child("Override");
    pugi::xml_node d = first ? root.insert_child_before("Default", first) : root.append_child("Default");
    d.append_attribute("Extension") = extension.toUtf8().constData();
    d.append_attribute("ContentType") = type.toUtf8().constData();
    touch(kContentTypes);
}

QString Package::relsName(const QString& part)
{
    if (part.isEmpty())
        return QStringLiteral("_rels/.rels");
    const QString folder = folderOf(part);
    const QString file = part.section('/', -1);
    return (folder.isEmpty() ? QString() : folder + '/') + "_rels/" + file + ".rels";
}

QList<Relationship> Package::rels(const QString& part)
{
    QList<Relationship> out;
    const QString name = relsName(part);
    if (!has(name))
        return out;
    for (pugi::xml_node r : xml(name).document_element().children("Relationship")) {
        Relationship rel;
        rel.id = QString::fromUtf8(r.attribute("Id").value());
        rel.type = QString::fromUtf8(r.attribute("Type").value());
        rel.target = QString::fromUtf8(r.attribute("Target").value());
        rel.external = QString::fromUtf8(r.attribute("TargetMode").value()) == "External";
        out << rel;
    }
    return out;
}

QString Package::resolve(const QString& part, const QString& target) const
{
    const QString t = QUrl::fromPercentEncoding(target.toUtf8());
    if (t.startsWith('/'))
        return normalise(t);
    return normalise(folderOf(part) + '/' + t);
}

QString Package::target(const QString& part, const QString& rid)
{
    for (const Relationship& rel : rels(part))
        if (rel.id == rid)
            return rel.external ? QString() : resolve(part, rel.target);
    return {};
}

QString Package::addRel(const QString& part, const QString& type, const QString& targetPart)
{
    const QString name = relsName(part);
    if (!has(name))
        setXml(name, "<?xml version=\"1.0\" encoding=\"UTF-8\" standalone=\"yes\"?>\r\n"
                     "<Relationships xmlns=\"http://schemas.openxmlformats.org/package/2006/relationships\"/>");
    pugi::xml_node root = xml(name).document_element();
    QSet<QString> used;
    for (pugi::xml_node r : root.children("Relationship"))
        used.insert(QString::fromUtf8(r.attribute("Id").value()));
    int n = 1;
    while (used.contains(QStringLiteral("rId%1").arg(n)))
        ++n;
    const QString id = QStringLiteral("rId%1").arg(n);
    // Targets are written relative to the source part's folder.
    const QString relative = QDir(folderOf(part).isEmpty() ? "/" : '/' + folderOf(part))
                                 .relativeFilePath('/' + targetPart);
    pugi::xml_node r = root.append_child("Relationship");
    r.append_attribute("Id") = id.toUtf8().constData();
    r.append_attribute("Type") = type.toUtf8().constData();
    r.append_attribute("Target") = relative.toUtf8().constData();
    touch(name);
    return id;
}

void Package::removeRel(const QString& part, const QString& rid)
{
    const QString name = relsName(part);
    if (!has(name))
        return;
    pugi::xml_node root = xml(name).document_element();
    for (pugi::xml_node r : root.children("Relationship"))
        if (QString::fromUtf8(r.attribute("Id").value()) == rid) {
            root.remove_child(r);
            touch(name);
            return;
        }
}

QString Package::freeName(const QString& pattern) const
{
    for (int n = 1;; ++n) {
        const QString name = pattern.arg(n);
        bool taken = false;
        for (auto it = parts_.constBegin(); it != parts_.constEnd(); ++it)
            if (it.key().compare(name, Qt::CaseInsensitive) == 0)
                taken = true;
        if (!taken)
            return name;
    }
}

} // namespace tallix::host
