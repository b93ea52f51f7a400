#pragma once
// The process-wide XML document that holds a question's settings while a run reads and
// edits them. It behaves as the document object the system was written against:
// whitespace-only text is not kept on load, `xml()` gives the whole text back, and a
// failed parse leaves an empty document with an error code and a reason.

#include <QString>

#include <pugixml.hpp>

namespace tallix {

struct ParseError {
    long errorCode = 0;
    QString reason;
};

class SettingsDocument {
public:
    // Parses text; false (and an empty document) when it is not well-formed.
    bool loadXML(const QString& text);
    // Reads a file; false when it cannot be read or parsed.
    bool load(const QString& path);
    QString xml() const;
    const ParseError& parseError() const { return parseError_; }

    pugi::xml_document& doc() { return doc_; }
    const pugi::xml_document& doc() const { return doc_; }

private:
    bool parse(const char* data, std::size_t size);
    pugi::xml_document doc_;
    ParseError parseError_;
};

// The runtime's names for node kinds: "#text", "#cdata-section", "#comment", else the tag.
QString NodeName(const pugi::xml_node& n);
// All text inside a node (its own for text and CDATA nodes), as the document object's
// `text` gives it: leading and trailing white space of an element's text dropped.
QString NodeText(const pugi::xml_node& n);
int ChildCount(const pugi::xml_node& n);

inline QString U(const pugi::char_t* s) { return QString::fromUtf8(s); }
inline std::string S(const QString& s) { return s.toStdString(); }

} // namespace tallix
