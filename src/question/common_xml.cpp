#include "common_xml.h"

#include "foundation/environment.h"
#include "foundation/error_report.h"
#include "foundation/numbers.h"
#include "question/columns_vote_xml.h"
#include "question/settings_document.h"
#include "reshow/reshow_setup.h"
#include "vote/run_context.h"

#include <sstream>

namespace tallix {

namespace {

const char* const kModule = "Common_XML";
const QString CRLF = QStringLiteral("\r\n");

// The deliberate shortcut: a section "exists" when its name occurs anywhere in the
// document's text, in any case, so a word in some value counts too; the selection
// that follows is then what fails.
bool sectionMentioned(const SettingsDocument& doc, const QString& section)
{
    return doc.xml().contains(section, Qt::CaseInsensitive);
}

pugi::xpath_node_set selectAll(const pugi::xml_node& context, const QString& xpath)
{
    return context.select_nodes(S(xpath).c_str());
}

void appendAttributes(QString& out, const pugi::xml_node& n)
{
    for (pugi::xml_attribute a = n.first_attribute(); a; a = a.next_attribute())
        out += "|" + U(a.name()) + "=" + U(a.value());
}

QString valueText(const QVariant& value)
{
    switch (value.typeId()) {
    case QMetaType::Double:
    case QMetaType::Float: {
        // Written the way the machine writes it, then with "." whatever that was.
        QString text = value.typeId() == QMetaType::Float ? QString::number(value.toFloat(), 'g', 7)
                                                          : QString::number(value.toDouble(), 'g', 15);
        text.replace(".", Get_localDecimal());
        return text.replace(Get_localDecimal(), ".");
    }
    case QMetaType::Bool:
        return CStrBool(value.toBool());
    default:
        return value.toString();
    }
}

// The document object's `text` setter: every child goes, one text node stays.
void setElementText(pugi::xml_node element, const QString& text)
{
    while (element.first_child())
        element.remove_child(element.first_child());
    element.append_child(pugi::node_pcdata).set_value(S(text).c_str());
}

void appendLineEnd(pugi::xml_node parent)
{
    parent.append_child(pugi::node_pcdata).set_value("\r\n");
}

// Adds an empty section last, editing the document as text and parsing it again: only
// the rare first write to a new section comes here. A root spelled otherwise than
// "</tlxfile>" gains nothing.
bool createSectionIn(SettingsDocument& doc, const QString& section)
{
    QString text = doc.xml();
    text.replace(QStringLiteral("</tlxfile>"),
                 "<" + section + ">" + CRLF + "</" + section + ">" + CRLF + "</tlxfile>");
    doc.loadXML(text);
    const QString now = doc.xml();
    return now.contains("<" + section + ">", Qt::CaseInsensitive) ||
           now.contains("<" + section + "/>", Qt::CaseInsensitive);
}

} // namespace

QString SectionXPath(const QString& section, const QString& attributeName, const QString& attributeValue)
{
    if (attributeName.isEmpty() || attributeValue.isEmpty())
        return "//" + section;
    return "//" + section + "[@" + attributeName + "=\"" + attributeValue + "\"]";
}

SettingsDocument& settingsDocOf(RunContext& ctx)
{
    if (!ctx.settingsDoc)
        ctx.settingsDoc = std::make_unique<SettingsDocument>();
    return *ctx.settingsDoc;
}

namespace {

// The first element a section selection finds, when it has children; otherwise null,
// with the store's error string in `error`.
pugi::xml_node firstSectionWithChildren(RunContext& ctx, const QString& section, const QString& attributeName,
                                        const QString& attributeValue, QString& error)
{
    SettingsDocument& doc = settingsDocOf(ctx);
    if (!sectionMentioned(doc, section)) {
        error = kErrNodeDoesNotExist;
        return {};
    }
    const pugi::xpath_node_set found = selectAll(doc.doc(), SectionXPath(section, attributeName, attributeValue));
    if (found.empty()) {
        error = kErrNotFound;
        return {};
    }
    const pugi::xml_node element = found.first().node();
    if (!element.first_child()) {
        error = kErrNoChildren;
        return {};
    }
    return element;
}

} // namespace

QString XMLGetNodes(RunContext& ctx, const QString& section, const QString& attributeName,
                    const QString& attributeValue)
{
    return Guarded(ctx, kModule, "XMLGetNodes", ctx.ShowErrors, QString(), [&]() -> QString {
        QString result;
        const pugi::xml_node element = firstSectionWithChildren(ctx, section, attributeName, attributeValue, result);
        if (!element)
            return result;
        for (pugi::xml_node child = element.first_child(); child; child = child.next_sibling()) {
            if (child.type() == pugi::node_comment)
                continue;
            if (child.type() == pugi::node_cdata) {
                result = U(child.value());
                continue;
            }
            if (ChildCount(child) == 1) {
                if (!result.isEmpty())
                    result += CRLF;
                result += NodeName(child) + "|" + NodeText(child);
                appendAttributes(result, child);
            } else {
                for (pugi::xml_node grand = child.first_child(); grand; grand = grand.next_sibling()) {
                    if (!result.isEmpty())
                        result += CRLF;
                    result += NodeName(grand) + "|" + NodeText(grand);
                }
            }
        }
        return result;
    });
}

QString XMLGetString(RunContext& ctx, const QString& section, const QString& attributeName,
                     const QString& attributeValue)
{
    return Guarded(ctx, kModule, "XMLGetString", ctx.ShowErrors, QString(), [&]() -> QString {
        QString result;
        const pugi::xml_node element = firstSectionWithChildren(ctx, section, attributeName, attributeValue, result);
        if (!element)
            return result;
        for (pugi::xml_node child = element.first_child(); child; child = child.next_sibling()) {
            if (child.type() == pugi::node_comment)
                continue;
            if (child.type() == pugi::node_cdata) {
                result = U(child.value());
                continue;
            }
            if (ChildCount(child) != 1)
                continue;
            if (!result.isEmpty())
                result += CRLF;
            const QString name = NodeName(child);
            result += "<" + name + ">" + NodeText(child) + "</" + name + ">" + CRLF;
            appendAttributes(result, child);
        }
        return result;
    });
}

QString XMLGetItem(const QString& itemName, const QString& xmlText)
{
    const QString open = "<" + itemName + ">";
    const qsizetype start = xmlText.indexOf(open, 0, Qt::CaseInsensitive);
    if (start < 0)
        return {};
    const qsizetype from = start + open.size();
    const qsizetype end = xmlText.indexOf("</" + itemName + ">", from, Qt::CaseInsensitive);
    QString item = end < 0 ? xmlText.mid(from) : xmlText.mid(from, end - from);
    item.remove(QStringLiteral("<![CDATA[")).remove(QStringLiteral("]]>"));
    for (;;) {
        if (item.endsWith('\t'))
            item.chop(1);
        else if (item.endsWith(CRLF))
            item.chop(2);
        else if (item.endsWith('\r') || item.endsWith('\n'))
            item.chop(1);
        else
            break;
    }
    return item;
}

bool XMLCreateSection(RunContext& ctx, const QString& section)
{
    return Guarded(ctx, kModule, "XMLCreateSection", ctx.ShowErrors, false,
                   [&] { return createSectionIn(settingsDocOf(ctx), section); });
}

bool XMLSetSingleNode(RunContext& ctx, const QString& section, const QString& key, const QVariant& value,
                      const QString& attributeName, const QString& attributeValue, SettingsDocument* document)
{
    return Guarded(ctx, kModule, "XMLSetSingleNode", ctx.ShowErrors, false, [&] {
        SettingsDocument& doc = document ? *document : settingsDocOf(ctx);
        // The section is made in the document being written, whichever that is.
        if (!sectionMentioned(doc, section))
            createSectionIn(doc, section);
        const QString text = valueText(value);
        const pugi::xpath_node_set sections =
            selectAll(doc.doc(), SectionXPath(section, attributeName, attributeValue));
        pugi::xml_node keyNode;
        for (const pugi::xpath_node& s : sections) {
            const pugi::xml_node element = s.node();
            std::ostringstream out;
            element.print(out, "", pugi::format_raw);
            if (!QString::fromStdString(out.str()).contains("<" + key + ">", Qt::CaseInsensitive))
                continue;
            const pugi::xpath_node k = element.select_node(S("//" + section + "/" + key).c_str());
            if (k && ChildCount(k.node()) <= 1) {
                keyNode = k.node();
                break;
            }
        }
        if (keyNode) {
            pugi::xml_node first = keyNode.first_child();
            if (first && first.type() == pugi::node_cdata)
                first.set_value(S(text).c_str());
            else
                setElementText(keyNode, text);
            return true;
        }
        if (sections.empty())
            Raise(ErrNo::ObjectVariableNotSet, "Object variable or With block variable not set");
        pugi::xml_node target = sections.first().node();
        pugi::xml_node added = target.append_child(S(key).c_str());
        if (key == "Answers" || key == "Question") {
            const pugi::xpath_node again = doc.doc().select_node(S("//" + key).c_str());
            pugi::xml_node holder = again ? again.node() : added;
            holder.append_child(pugi::node_cdata).set_value(S(text).c_str());
        } else {
            setElementText(added, text);
        }
        appendLineEnd(target);
        return false;
    });
}

void XMLNodeClear(RunContext& ctx, const QString& section, bool removeSection, const QString& attributeName,
                  const QString& attributeValue)
{
    Guarded(ctx, kModule, "XMLNodeClear", ctx.ShowErrors, [&] {
        SettingsDocument& doc = settingsDocOf(ctx);
        if (!sectionMentioned(doc, section))
            return;
        const QString path = SectionXPath(section, attributeName, attributeValue);
        const pugi::xpath_node_set sections = selectAll(doc.doc(), path);
        if (sections.empty())
            return;
        // Nodes go last first: a selected node inside another selected one is removed
        // before the one that holds it, never after it went with it.
        const auto removeAll = [](pugi::xpath_node_set nodes) {
            nodes.sort();
            for (size_t i = nodes.size(); i-- > 0;)
                nodes[i].node().parent().remove_child(nodes[i].node());
        };
        if (removeSection) {
            removeAll(sections);
            return;
        }
        // The names first: removing by one name can take siblings of other children with it.
        QStringList names;
        for (const pugi::xml_node child : sections.first().node().children())
            if (child.type() == pugi::node_element && !names.contains(U(child.name())))
                names.prepend(U(child.name()));
        for (const QString& name : names)
            removeAll(selectAll(doc.doc(), path + "/" + name));
    });
}

bool LoadDefaultXML(RunContext& ctx)
{
    bool loaded = false;
    Guarded(ctx, kModule, "LoadDefaultXML", ctx.ShowErrors, [&] {
        SettingsDocument& doc = settingsDocOf(ctx);
        const QString exe = ctx.app.exeName.toUpper();
        QString file = QStringLiteral("Default.xml");
        if (exe == "MATRIX")
            file = "defaultMatrix.xml";
        else if (exe == "QUIZ")
            file = "defaultQuiz.xml";
        else if (exe == "TEAM" || exe == "TEAMSCORES")
            file = "defaultTeam.xml";
        else if (exe == "RESHOW")
            file = "defaultReshow.xml";
        const QString path = FindFileNoCase(ctx.app.folder, file);
        if (FileExists(path)) {
            if (doc.load(path)) {
                loaded = doc.parseError().errorCode == 0;
            } else {
                // A damaged default leaves no document at all; later use falls into error reports.
                ctx.settingsDoc.reset();
                loaded = false;
            }
        }
        if (exe == "RESHOW")
            SetReshowVarsFromXML(ctx);
        else if (exe != "VOTE" && exe != "MATRIX" && exe != "QUIZ" && exe != "TEAM" && exe != "TEAMSCORES")
            SetVarsFromXML(ctx);
    });
    return loaded;
}

} // namespace tallix
