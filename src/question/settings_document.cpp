#include "settings_document.h"

#include <QFile>

#include <sstream>

namespace tallix {

namespace {
constexpr unsigned kParseFlags =
    pugi::parse_default | pugi::parse_declaration | pugi::parse_comments | pugi::parse_pi | pugi::parse_doctype;
} // namespace

bool SettingsDocument::parse(const char* data, std::size_t size)
{
    const pugi::xml_parse_result r = doc_.load_buffer(data, size, kParseFlags, pugi::encoding_utf8);
    if (r) {
        // A document must have a root element to be one at all.
        if (!doc_.document_element()) {
            doc_.reset();
            parseError_ = {-1072896680, QStringLiteral("XML document must have a top level element.")};
            return false;
        }
        parseError_ = {};
        return true;
    }
    doc_.reset();
    parseError_ = {-1072896000 - long(r.status),
                   QStringLiteral("%1 at character %2.").arg(QString::fromLatin1(r.description())).arg(r.offset)};
    return false;
}

bool SettingsDocument::loadXML(const QString& text)
{
    const QByteArray utf8 = text.toUtf8();
    return parse(utf8.constData(), std::size_t(utf8.size()));
}

bool SettingsDocument::load(const QString& path)
{
    QFile f(path);
    if (!f.open(QIODevice::ReadOnly)) {
        doc_.reset();
        parseError_ = {-2146697210, QStringLiteral("The system cannot locate the object specified.")};
        return false;
    }
    const QByteArray bytes = f.readAll();
    return parse(bytes.constData(), std::size_t(bytes.size()));
}

QString SettingsDocument::xml() const
{
    std::ostringstream out;
    doc_.save(out, "", pugi::format_raw | pugi::format_no_declaration, pugi::encoding_utf8);
    return QString::fromStdString(out.str());
}

QString NodeName(const pugi::xml_node& n)
{
    switch (n.type()) {
    case pugi::node_pcdata: return QStringLiteral("#text");
    case pugi::node_cdata: return QStringLiteral("#cdata-section");
    case pugi::node_comment: return QStringLiteral("#comment");
    case pugi::node_document: return QStringLiteral("#document");
    default: return U(n.name());
    }
}

namespace {
void collectText(const pugi::xml_node& n, QString& out)
{
    for (pugi::xml_node c = n.first_child(); c; c = c.next_sibling()) {
        if (c.type() == pugi::node_pcdata || c.type() == pugi::node_cdata)
            out += U(c.value());
        else if (c.type() == pugi::node_element)
            collectText(c, out);
    }
}
} // namespace

QString NodeText(const pugi::xml_node& n)
{
    if (n.type() == pugi::node_pcdata || n.type() == pugi::node_cdata)
        return U(n.value());
    QString out;
    collectText(n, out);
    return out.trimmed();
}

int ChildCount(const pugi::xml_node& n)
{
    int count = 0;
    for (pugi::xml_node c = n.first_child(); c; c = c.next_sibling())
        ++count;
    return count;
}

} // namespace tallix
