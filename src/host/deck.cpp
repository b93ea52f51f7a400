#include "deck.h"
#include "templates.h"

#include "foundation/host.h"
#include "foundation/vb_error.h"

#include <QFileInfo>
#include <QSet>
#include <cmath>

namespace tallix::host {

namespace {

constexpr double kEmuPerPoint = 12700.0;

QString str(const pugi::char_t* s) { return QString::fromUtf8(s); }
QByteArray utf8(const QString& s) { return s.toUtf8(); }

qint64 emu(double points) { return qint64(std::llround(points * kEmuPerPoint)); }

const QString kPresentationMain = QStringLiteral("presentationml");

// The prefix a document binds to a namespace; declared on the root when missing.
QByteArray prefixFor(pugi::xml_node anyNode, const char* uri, const char* preferred)
{
    pugi::xml_node root;
    for (pugi::xml_node c : anyNode.root().children())
        if (c.type() == pugi::node_element)
            root = c;
    for (pugi::xml_attribute a : root.attributes()) {
        const QByteArray name = a.name();
        if (QByteArray(a.value()) == uri) {
            if (name == "xmlns")
                return {};
            if (name.startsWith("xmlns:"))
                return name.mid(6) + ':';
        }
    }
    root.append_attribute((QByteArray("xmlns:") + preferred).constData()) = uri;
    return QByteArray(preferred) + ':';
}

QByteArray P(pugi::xml_node n, const char* local) { return prefixFor(n, Ns::P, "p") + local; }
QByteArray A(pugi::xml_node n, const char* local) { return prefixFor(n, Ns::A, "a") + local; }
QByteArray R(pugi::xml_node n, const char* local) { return prefixFor(n, Ns::R, "r") + local; }

// Attribute in the relationships namespace, whatever its prefix.
pugi::xml_attribute relAttr(pugi::xml_node n, const char* local)
{
    return n.attribute(R(n, local).constData());
}

bool isShapeElement(const QString& local)
{
    return local == "sp" || local == "pic" || local == "grpSp" || local == "graphicFrame" ||
           local == "cxnSp" || local == "contentPart" || local == "AlternateContent";
}

// The shape an mc:AlternateContent stands for: its first choice.
pugi::xml_node effective(pugi::xml_node shape)
{
    if (LocalName(shape) != "AlternateContent")
        return shape;
    for (pugi::xml_node branch : shape.children()) {
        if (branch.type() != pugi::node_element)
            continue;
        for (pugi::xml_node c : branch.children())
            if (c.type() == pugi::node_element)
                return c;
    }
    return shape;
}

pugi::xml_node nvProps(pugi::xml_node shape)
{
    shape = effective(shape);
    for (pugi::xml_node c : shape.children())
        if (c.type() == pugi::node_element && LocalName(c).startsWith("nv"))
            return c;
    return {};
}

pugi::xml_node cNvPr(pugi::xml_node shape) { return Child(nvProps(shape), "cNvPr"); }

pugi::xml_node xfrmOf(pugi::xml_node shape)
{
    shape = effective(shape);
    const QString local = LocalName(shape);
    if (local == "graphicFrame")
        return Child(shape, "xfrm");
    if (local == "grpSp")
        return Child(Child(shape, "grpSpPr"), "xfrm");
    return Child(Child(shape, "spPr"), "xfrm");
}

pugi::xml_node phOf(pugi::xml_node shape) { return Child(Child(nvProps(shape), "nvPr"), "ph"); }

void collectIds(pugi::xml_node node, QSet<int>& ids)
{
    for (pugi::xml_node c : node.children()) {
        if (c.type() != pugi::node_element)
            continue;
        if (LocalName(c) == "cNvPr")
            ids.insert(c.attribute("id").as_int());
        collectIds(c, ids);
    }
}

void collectRelIds(pugi::xml_node node, QStringList& out)
{
    const QByteArray rPrefix = prefixFor(node, Ns::R, "r");
    std::function<void(pugi::xml_node)> walk = [&](pugi::xml_node n) {
        for (pugi::xml_attribute a : n.attributes())
            if (QByteArray(a.name()).startsWith(rPrefix))
                out << str(a.value());
        for (pugi::xml_node c : n.children())
            if (c.type() == pugi::node_element)
                walk(c);
    };
    walk(node);
}

bool usesRelId(pugi::xml_node node, const QByteArray& rPrefix, const QByteArray& rid)
{
    for (pugi::xml_attribute a : node.attributes())
        if (QByteArray(a.name()).startsWith(rPrefix) && rid == a.value())
            return true;
    for (pugi::xml_node c : node.children())
        if (c.type() == pugi::node_element && usesRelId(c, rPrefix, rid))
            return true;
    return false;
}

const QStringList kPresentationOrder{
    "sldMasterIdLst", "notesMasterIdLst", "handoutMasterIdLst", "sldIdLst", "sldSz", "notesSz",
    "smartTags", "embeddedFontLst", "custShowLst", "photoAlbum", "custDataLst", "kinsoku",
    "defaultTextStyle", "modifyVerifier", "extLst"};
const QStringList kCSldOrder{"bg", "spTree", "custDataLst", "controls", "extLst"};
const QStringList kSpPrOrder{"xfrm", "custGeom", "prstGeom", "noFill", "solidFill", "gradFill",
                             "blipFill", "pattFill", "grpFill", "ln", "effectLst", "effectDag",
                             "scene3d", "sp3d", "extLst"};
const QStringList kCNvPrOrder{"hlinkClick", "hlinkHover", "extLst"};
const QStringList kRPrOrder{"ln", "noFill", "solidFill", "gradFill", "blipFill", "pattFill", "grpFill",
                            "effectLst", "effectDag", "highlight", "uLnTx", "uLn", "uFillTx", "uFill",
                            "latin", "ea", "cs", "sym", "hlinkClick", "hlinkMouseOver", "rtl", "extLst"};

QString contentTypeForExtension(const QString& ext)
{
    const QString e = ext.toLower();
    if (e == "png") return "image/png";
    if (e == "jpg" || e == "jpeg") return "image/jpeg";
    if (e == "gif") return "image/gif";
    if (e == "bmp") return "image/bmp";
    if (e == "emf") return "image/x-emf";
    if (e == "wmf") return "image/x-wmf";
    if (e == "svg") return "image/svg+xml";
    if (e == "eps") return "application/postscript";
    if (e == "pcx") return "image/x-pcx";
    if (e == "tif" || e == "tiff") return "image/tiff";
    return "application/octet-stream";
}

// The picture's own size in points, from its header; 0x0 when unknown.
QSizeF nativeSize(const QByteArray& d, const QString& ext)
{
    auto be32 = [&](int at) {
        return (quint32(uchar(d[at])) << 24) | (quint32(uchar(d[at + 1])) << 16) |
               (quint32(uchar(d[at + 2])) << 8) | quint32(uchar(d[at + 3]));
    };
    auto le32 = [&](int at) {
        return qint32(quint32(uchar(d[at])) | (quint32(uchar(d[at + 1])) << 8) |
                      (quint32(uchar(d[at + 2])) << 16) | (quint32(uchar(d[at + 3])) << 24));
    };
    const QString e = ext.toLower();
    if (e == "png" && d.size() >= 24 && d.startsWith("\x89PNG"))
        return QSizeF(be32(16) * 0.75, be32(20) * 0.75); // 96 pixels per inch
    if (e == "bmp" && d.size() >= 26 && d.startsWith("BM"))
        return QSizeF(le32(18) * 0.75, std::abs(le32(22)) * 0.75);
    if (e == "gif" && d.size() >= 10 && d.startsWith("GIF"))
        return QSizeF((uchar(d[6]) | (uchar(d[7]) << 8)) * 0.75, (uchar(d[8]) | (uchar(d[9]) << 8)) * 0.75);
    if (e == "emf" && d.size() >= 40 && le32(0) == 1) {
        // rclFrame in hundredths of a millimetre.
        const double w = (le32(32) - le32(24)) / 100.0 / 25.4 * 72.0;
        const double h = (le32(36) - le32(28)) / 100.0 / 25.4 * 72.0;
        return QSizeF(w, h);
    }
    return {};
}

[[noreturn]] void notFound(const QString& what)
{
    Raise(ErrNo::ItemNotFound,
          QStringLiteral("The item with the specified name wasn't found: %1").arg(what));
}

QString escapeXml(const QString& s) { return s.toHtmlEscaped(); }

// XML cannot carry control characters other than TAB, LF and CR, and a deck holding
// one would not open again anywhere; they are dropped.
QString xmlSafe(const QString& s)
{
    QString out;
    out.reserve(s.size());
    for (QChar c : s)
        if (c.unicode() >= 0x20 || c == '\t' || c == '\n' || c == '\r')
            out += c;
    return out;
}

// Fonts whose characters are pictures. A renderer draws their glyphs only when the
// run names them as its symbol font too, with the symbol character set.
bool isGlyphFont(const QString& name)
{
    const QString n = name.trimmed();
    return n.startsWith("Wingdings", Qt::CaseInsensitive) || n.compare("Webdings", Qt::CaseInsensitive) == 0 ||
           n.compare("Symbol", Qt::CaseInsensitive) == 0 || n.compare("Marlett", Qt::CaseInsensitive) == 0;
}

void setAttr(pugi::xml_node n, const char* name, const QByteArray& value)
{
    if (!n.attribute(name))
        n.append_attribute(name);
    n.attribute(name) = value.constData();
}

// Name, size and colour on one run's properties; everything else it says stays.
void setRunFont(pugi::xml_node rPr, const QString& name, double size, const QByteArray& rgb)
{
    setAttr(rPr, "sz", QByteArray::number(qRound(size * 100)));
    for (const char* f : {"noFill", "solidFill", "gradFill", "blipFill", "pattFill", "grpFill"})
        while (pugi::xml_node old = Child(rPr, f))
            rPr.remove_child(old);
    pugi::xml_node fill = InsertInOrder(rPr, A(rPr, "solidFill").constData(), kRPrOrder);
    fill.append_child(A(rPr, "srgbClr").constData()).append_attribute("val") = rgb.constData();

    const bool glyph = isGlyphFont(name);
    const QByteArray face = utf8(xmlSafe(name));
    for (const char* which : {"latin", "sym"}) {
        pugi::xml_node font = Child(rPr, which);
        if (QByteArray(which) == "sym" && !glyph) {
            // A symbol font left from before would still turn this text into pictures.
            if (font)
                rPr.remove_child(font);
            continue;
        }
        if (font)
            rPr.remove_child(font); // its panose and character set describe the old font
        font = InsertInOrder(rPr, A(rPr, which).constData(), kRPrOrder);
        font.append_attribute("typeface") = face.constData();
        if (glyph) {
            font.append_attribute("pitchFamily") = "2";
            font.append_attribute("charset") = "2";
        }
    }
}

// Column widths (or row heights) that add up to the frame's width (or height), in
// the proportions they had; a negative total leaves them.
void fitTableGrid(pugi::xml_node tbl, qint64 cx, qint64 cy)
{
    auto fit = [](QList<pugi::xml_node> items, const char* attr, qint64 total) {
        if (items.isEmpty() || total < 0)
            return;
        qint64 before = 0;
        for (pugi::xml_node n : items)
            before += qMax<qint64>(0, n.attribute(attr).as_llong());
        qint64 given = 0;
        for (int i = 0; i < items.size(); ++i) {
            qint64 v;
            if (i == items.size() - 1)
                v = total - given; // the rounding lands on the last one
            else if (before > 0)
                v = qint64(std::llround(double(total) * qMax<qint64>(0, items[i].attribute(attr).as_llong()) / before));
            else
                v = total / items.size();
            v = qMax<qint64>(0, v);
            given += v;
            setAttr(items[i], attr, QByteArray::number(v));
        }
    };
    QList<pugi::xml_node> cols, rows;
    for (pugi::xml_node c : Child(tbl, "tblGrid").children())
        if (LocalName(c) == "gridCol")
            cols << c;
    for (pugi::xml_node r : tbl.children())
        if (LocalName(r) == "tr")
            rows << r;
    fit(cols, "w", cx);
    fit(rows, "h", cy);
}

// A paragraph's text as the host counts it: runs and fields by their text, a line
// break as one character, and one more (the CR) between paragraphs.
struct TextPiece {
    pugi::xml_node node;
    int start, length;
};
struct ParagraphText {
    pugi::xml_node p;
    QList<TextPiece> pieces;
    int start, length;
};

QList<ParagraphText> textLayout(pugi::xml_node body)
{
    QList<ParagraphText> out;
    int at = 0;
    for (pugi::xml_node p : body.children()) {
        if (LocalName(p) != "p")
            continue;
        ParagraphText para{p, {}, at, 0};
        for (pugi::xml_node c : p.children()) {
            const QString local = LocalName(c);
            const int n = local == "br" ? 1 : (local == "r" || local == "fld") ? int(str(Child(c, "t").text().get()).size()) : -1;
            if (n < 0)
                continue;
            para.pieces.append({c, at, n});
            at += n;
        }
        para.length = at - para.start;
        out << para;
        ++at;
    }
    return out;
}

// Makes a piece start at `offset`: the run it falls in is cut in two with the same look.
// A field cut so is plain text from then on.
void splitTextAt(pugi::xml_node body, int offset)
{
    for (const ParagraphText& para : textLayout(body))
        for (const TextPiece& piece : para.pieces) {
            if (offset <= piece.start || offset >= piece.start + piece.length)
                continue;
            pugi::xml_node run = piece.node;
            if (LocalName(run) == "fld") {
                run.set_name(A(run, "r").constData());
                run.remove_attribute("id");
                run.remove_attribute("type");
                run.remove_child(Child(run, "pPr"));
            }
            const QString text = str(Child(run, "t").text().get());
            const int cut = offset - piece.start;
            pugi::xml_node rest = run.parent().insert_copy_after(run, run);
            Child(run, "t").text() = utf8(text.left(cut)).constData();
            Child(rest, "t").text() = utf8(text.mid(cut)).constData();
            return;
        }
}

// Puts one paragraph's worth of new text (line breaks as character 11) before `before`,
// or before the paragraph's end mark.
void insertLine(pugi::xml_node p, pugi::xml_node before, const QString& line, pugi::xml_node look)
{
    if (!before)
        before = Child(p, "endParaRPr");
    auto add = [&](const char* local) {
        const QByteArray name = A(p, local);
        return before ? p.insert_child_before(name.constData(), before) : p.append_child(name.constData());
    };
    const QStringList parts = line.split(QChar(11));
    for (int i = 0; i < parts.size(); ++i) {
        if (i > 0) {
            pugi::xml_node br = add("br");
            if (look)
                br.append_copy(look);
        }
        if (parts[i].isEmpty())
            continue;
        pugi::xml_node r = add("r");
        if (look)
            r.append_copy(look);
        else
            r.append_child(A(p, "rPr").constData()).append_attribute("lang") = "en-US";
        r.append_child(A(p, "t").constData()).text() = utf8(xmlSafe(parts[i])).constData();
    }
}

void setEndMark(pugi::xml_node p, pugi::xml_node mark)
{
    if (!mark)
        return;
    p.remove_child(Child(p, "endParaRPr"));
    p.append_copy(mark).set_name(A(p, "endParaRPr").constData());
}

// `Characters(start, count).Replace(text)` on a text body; see TextFrame::ReplaceText.
void replaceText(pugi::xml_node body, int start, int count, const QString& text)
{
    QList<ParagraphText> layout = textLayout(body);
    const int total = layout.isEmpty() ? 0 : layout.last().start + layout.last().length;
    if (start < 1 || start > total + 1 || count < 0)
        Raise(ErrNo::ItemNotFound, QStringLiteral("TextRange.Characters : The specified value is out of range."));
    if (layout.isEmpty())
        body.append_child(A(body, "p").constData());
    // A stretch that runs past the end ends there, as the host's does.
    const int from = start - 1, to = qMin(total, from + count);
    splitTextAt(body, to);
    splitTextAt(body, from);
    layout = textLayout(body);
    auto paragraphAt = [&](int offset) {
        for (int i = 0; i < layout.size(); ++i)
            if (offset <= layout[i].start + layout[i].length)
                return i;
        return int(layout.size()) - 1;
    };
    const int first = paragraphAt(from), last = paragraphAt(to);
    pugi::xml_node firstP = layout[first].p, lastP = layout[last].p;

    // The new text looks like the piece the stretch begins with; at a paragraph's end,
    // like the piece before, else like the paragraph's end mark.
    pugi::xml_document keep;
    pugi::xml_node lookFrom;
    for (const TextPiece& piece : layout[first].pieces) {
        lookFrom = piece.node;
        if (piece.start >= from)
            break;
    }
    pugi::xml_node look = keep.append_copy(lookFrom ? Child(lookFrom, "rPr") : Child(firstP, "endParaRPr"));
    if (look)
        look.set_name(A(body, "rPr").constData());
    pugi::xml_node pPr = keep.append_copy(Child(firstP, "pPr"));
    pugi::xml_node firstEnd = keep.append_copy(Child(firstP, "endParaRPr"));
    pugi::xml_node lastEnd = keep.append_copy(Child(lastP, "endParaRPr"));

    QList<pugi::xml_node> tail;
    for (int i = first; i <= last; ++i)
        for (const TextPiece& piece : layout[i].pieces) {
            if (i == last && piece.start >= to)
                tail << piece.node;
            else if (i != first || piece.start >= from)
                layout[i].p.remove_child(piece.node);
        }

    QString fresh = text;
    fresh.replace("\r\n", "\r").replace('\n', '\r');
    const QStringList lines = fresh.split('\r');
    insertLine(firstP, first == last ? tail.value(0) : pugi::xml_node(), lines[0], look);
    // New paragraphs take the look of the one the stretch begins in; the last of them,
    // which ends in the text after the stretch, that text's paragraph end.
    pugi::xml_node end = firstP;
    for (int k = 1; k < lines.size(); ++k) {
        end = body.insert_child_after(A(body, "p").constData(), end);
        if (pPr)
            end.append_copy(pPr);
        setEndMark(end, k + 1 < lines.size() ? (firstEnd ? firstEnd : look) : (lastEnd ? lastEnd : look));
        insertLine(end, {}, lines[k], look);
    }
    if (end != lastP) {
        for (pugi::xml_node piece : tail) {
            pugi::xml_node mark = Child(end, "endParaRPr");
            mark ? end.insert_move_before(piece, mark) : end.append_move(piece);
        }
        if (end == firstP)
            setEndMark(firstP, lastEnd);
    }
    for (int i = first + 1; i <= last; ++i)
        body.remove_child(layout[i].p);
}

} // namespace

QString LocalName(pugi::xml_node node)
{
    const QString name = str(node.name());
    const int colon = name.indexOf(':');
    return colon < 0 ? name : name.mid(colon + 1);
}

pugi::xml_node Child(pugi::xml_node node, const char* local)
{
    if (!node)
        return {};
    const QString want = QString::fromLatin1(local);
    for (pugi::xml_node c : node.children())
        if (c.type() == pugi::node_element && LocalName(c) == want)
            return c;
    return {};
}

pugi::xml_node InsertInOrder(pugi::xml_node parent, const char* qname, const QStringList& order)
{
    QString local = QString::fromLatin1(qname);
    local = local.mid(local.indexOf(':') + 1);
    const int mine = order.indexOf(local);
    for (pugi::xml_node c : parent.children()) {
        if (c.type() != pugi::node_element)
            continue;
        const int theirs = order.indexOf(LocalName(c));
        if (theirs > mine)
            return parent.insert_child_before(qname, c);
    }
    return parent.append_child(qname);
}

// ---- opening ----

Deck Deck::fromFile(const QString& path, const PackageLimits& limits)
{
    try {
        return open(Package::fromFile(path, limits));
    } catch (const PackageError& e) {
        if (e.message().contains(path))
            throw;
        throw PackageError(QStringLiteral("%1: %2").arg(path, e.message()));
    }
}

Deck Deck::open(Package package)
{
    Deck deck;
    deck.pkg_ = std::move(package);
    deck.load();
    return deck;
}

void Deck::load()
{
    for (const Relationship& rel : pkg_.rels(QString()))
        if (rel.type == Rel::OfficeDocument)
            presentationPart_ = pkg_.resolve(QString(), rel.target);
    if (presentationPart_.isEmpty() || !pkg_.contentType(presentationPart_).contains(kPresentationMain))
        throw PackageError(QStringLiteral("not a presentation: the package holds no presentationml document"));
    if (!pkg_.has(presentationPart_))
        throw PackageError(QStringLiteral("the package points to the missing part %1").arg(presentationPart_));
    pugi::xml_node root = pkg_.xml(presentationPart_).document_element();
    if (LocalName(root) != "presentation")
        throw PackageError(QStringLiteral("%1 is not a presentation").arg(presentationPart_));

    // Every internal relationship of the presentation and of its slides must land on a part.
    auto checkRels = [&](const QString& part) {
        for (const Relationship& rel : pkg_.rels(part)) {
            // Hyperlinks may point inside a document rather than at a part.
            if (rel.external || rel.type.endsWith("/hyperlink") || rel.target.startsWith('#'))
                continue;
            const QString target = pkg_.resolve(part, rel.target);
            if (!pkg_.has(target))
                throw PackageError(QStringLiteral("relationship %1 of %2 points to the missing part %3")
                                       .arg(rel.id, part, target));
        }
    };
    checkRels(presentationPart_);

    slides_.clear();
    for (pugi::xml_node id : Child(root, "sldIdLst").children()) {
        if (id.type() != pugi::node_element)
            continue;
        const QString rid = str(relAttr(id, "id").value());
        const QString part = pkg_.target(presentationPart_, rid);
        if (part.isEmpty() || !pkg_.has(part))
            throw PackageError(QStringLiteral("slide %1 points to a missing part").arg(slides_.size() + 1));
        pugi::xml_node sld = pkg_.xml(part).document_element();
        if (LocalName(sld) != "sld" || !Child(Child(sld, "cSld"), "spTree"))
            throw PackageError(QStringLiteral("%1 is not a slide").arg(part));
        checkRels(part);
        slides_.append({id.attribute("id").as_llong(), part});
    }
    // Every XML part is read now, so a broken one is refused at opening rather than
    // failing some host call in the middle of a vote.
    for (const QString& name : pkg_.partNames())
        if (name.endsWith(".xml", Qt::CaseInsensitive) || name.endsWith(".rels", Qt::CaseInsensitive))
            pkg_.xml(name);
    pugi::xml_node size = Child(root, "sldSz");
    if (size) {
        slideWidthPt_ = size.attribute("cx").as_llong() / kEmuPerPoint;
        slideHeightPt_ = size.attribute("cy").as_llong() / kEmuPerPoint;
    }
}

qint64 Deck::slideIdAt(int index) const
{
    return index >= 1 && index <= slides_.size() ? slides_[index - 1].id : 0;
}

int Deck::slideIndexOf(qint64 id) const
{
    for (int i = 0; i < slides_.size(); ++i)
        if (slides_[i].id == id)
            return i + 1;
    return 0;
}

QString Deck::slidePart(qint64 id) const
{
    for (const SlideEntry& s : slides_)
        if (s.id == id)
            return s.part;
    Raise(ErrNo::HostUnexpected, QStringLiteral("Slide (unknown member) : Object does not exist (slide id %1)").arg(id));
}

QString Deck::slideName(qint64 id)
{
    const QString name = str(Child(pkg_.xml(slidePart(id)).document_element(), "cSld").attribute("name").value());
    return name.isEmpty() ? QStringLiteral("Slide%1").arg(id) : name;
}

QString Deck::ownerPart(qint64 slideId) const { return slideId ? slidePart(slideId) : presentationPart_; }

// ---- shapes ----

QList<pugi::xml_node> Deck::shapes(const QString& part)
{
    QList<pugi::xml_node> out;
    pugi::xml_node tree = Child(Child(pkg_.xml(part).document_element(), "cSld"), "spTree");
    for (pugi::xml_node c : tree.children())
        if (c.type() == pugi::node_element && isShapeElement(LocalName(c)))
            out << c;
    return out;
}

QList<pugi::xml_node> Deck::groupMembers(pugi::xml_node group)
{
    QList<pugi::xml_node> out;
    if (LocalName(group) != "grpSp")
        return out;
    for (pugi::xml_node c : group.children())
        if (c.type() == pugi::node_element && isShapeElement(LocalName(c)))
            out << c;
    return out;
}

namespace {
pugi::xml_node findMember(pugi::xml_node group, const QString& name, int id)
{
    for (pugi::xml_node m : Deck::groupMembers(group)) {
        if (Deck::shapeId(m) == id && Deck::shapeName(m) == name)
            return m;
        if (pugi::xml_node inner = findMember(m, name, id))
            return inner;
    }
    return {};
}
} // namespace

pugi::xml_node Deck::findShape(const QString& part, const QString& name, int idHint)
{
    pugi::xml_node first;
    const QList<pugi::xml_node> all = shapes(part);
    for (pugi::xml_node s : all) {
        if (shapeName(s) != name)
            continue;
        if (!idHint || shapeId(s) == idHint)
            return s;
        if (!first)
            first = s;
    }
    if (!first && idHint)
        for (pugi::xml_node s : all)
            if (pugi::xml_node m = findMember(s, name, idHint))
                return m;
    return first;
}

QString Deck::shapeName(pugi::xml_node shape) { return str(cNvPr(shape).attribute("name").value()); }
int Deck::shapeId(pugi::xml_node shape) { return cNvPr(shape).attribute("id").as_int(); }
bool Deck::shapeHidden(pugi::xml_node shape) { return cNvPr(shape).attribute("hidden").as_bool(); }

QString Deck::kindName(pugi::xml_node shape)
{
    shape = effective(shape);
    const QString local = LocalName(shape);
    if (local == "pic") return ShapeKindName(ShapeKind::Picture);
    if (local == "grpSp") return ShapeKindName(ShapeKind::Group);
    if (local == "cxnSp") return ShapeKindName(ShapeKind::Connector);
    if (local == "graphicFrame")
        return ShapeKindName(table(shape) ? ShapeKind::Table : ShapeKind::Graphic);
    if (local == "sp" && textBody(shape)) return ShapeKindName(ShapeKind::Text);
    return ShapeKindName(ShapeKind::Other);
}

QString Deck::layoutOf(const QString& part)
{
    for (const Relationship& rel : pkg_.rels(part))
        if (rel.type == Rel::SlideLayout || rel.type == Rel::NotesMaster)
            return pkg_.resolve(part, rel.target);
    return {};
}

QString Deck::masterOf(const QString& part)
{
    for (const Relationship& rel : pkg_.rels(part))
        if (rel.type == Rel::SlideMaster)
            return pkg_.resolve(part, rel.target);
    return {};
}

QString Deck::themeOf()
{
    pugi::xml_node first = Child(Child(pkg_.xml(presentationPart_).document_element(), "sldMasterIdLst"), "sldMasterId");
    const QString master = pkg_.target(presentationPart_, str(relAttr(first, "id").value()));
    if (master.isEmpty())
        return {};
    for (const Relationship& rel : pkg_.rels(master))
        if (rel.type == Rel::Theme)
            return pkg_.resolve(master, rel.target);
    return {};
}

// The placeholder on the layout (level 1) or master (level 2) that a slide's
// placeholder takes its position and text style from.
pugi::xml_node Deck::inheritedPlaceholder(const QString& part, pugi::xml_node shape, int level)
{
    pugi::xml_node ph = phOf(shape);
    if (!ph)
        return {};
    QString source = layoutOf(part);
    if (level == 2 && !source.isEmpty())
        source = masterOf(source);
    if (source.isEmpty() || !pkg_.has(source))
        return {};
    const QString type = ph.attribute("type") ? str(ph.attribute("type").value()) : QStringLiteral("obj");
    const QString idx = str(ph.attribute("idx").value());
    auto masterType = [](const QString& t) {
        if (t == "ctrTitle" || t == "title") return QStringLiteral("title");
        if (t == "subTitle" || t == "obj" || t == "body") return QStringLiteral("body");
        return t;
    };
    pugi::xml_node byType;
    for (pugi::xml_node s : shapes(source)) {
        pugi::xml_node sph = phOf(s);
        if (!sph)
            continue;
        const QString stype = sph.attribute("type") ? str(sph.attribute("type").value()) : QStringLiteral("obj");
        if (level == 1 && !idx.isEmpty() && idx != "0" && str(sph.attribute("idx").value()) == idx)
            return s;
        if (!byType && (level == 1 ? stype == type : masterType(stype) == masterType(type)))
            byType = s;
    }
    return byType;
}

QRectF Deck::geometry(const QString& part, pugi::xml_node shape)
{
    pugi::xml_node x = xfrmOf(shape);
    if (!Child(x, "off")) {
        for (int level = 1; level <= 2 && !Child(x, "off"); ++level) {
            pugi::xml_node inherited = inheritedPlaceholder(part, shape, level);
            if (inherited)
                x = xfrmOf(inherited);
        }
    }
    pugi::xml_node off = Child(x, "off"), ext = Child(x, "ext");
    return QRectF(off.attribute("x").as_llong() / kEmuPerPoint, off.attribute("y").as_llong() / kEmuPerPoint,
                  ext.attribute("cx").as_llong() / kEmuPerPoint, ext.attribute("cy").as_llong() / kEmuPerPoint);
}

pugi::xml_node Deck::textBody(pugi::xml_node shape) { return Child(effective(shape), "txBody"); }

pugi::xml_node Deck::table(pugi::xml_node shape)
{
    shape = effective(shape);
    if (LocalName(shape) != "graphicFrame")
        return {};
    return Child(Child(Child(shape, "graphic"), "graphicData"), "tbl");
}

pugi::xml_node Deck::tableCellBody(pugi::xml_node shape, int row, int column)
{
    int r = 0;
    for (pugi::xml_node tr : table(shape).children()) {
        if (LocalName(tr) != "tr" || ++r != row)
            continue;
        int c = 0;
        for (pugi::xml_node tc : tr.children())
            if (LocalName(tc) == "tc" && ++c == column)
                return Child(tc, "txBody");
    }
    return {};
}

QStringList Deck::paragraphs(pugi::xml_node txBody)
{
    QStringList out;
    for (pugi::xml_node p : txBody.children()) {
        if (LocalName(p) != "p")
            continue;
        QString text;
        for (pugi::xml_node r : p.children()) {
            const QString local = LocalName(r);
            if (local == "r" || local == "fld")
                text += str(Child(r, "t").text().get());
            else if (local == "br")
                text += QChar(11); // the host's line break inside a paragraph
        }
        out << text;
    }
    return out;
}

int Deck::alignment(pugi::xml_node txBody)
{
    const QString algn = str(Child(Child(txBody, "p"), "pPr").attribute("algn").value());
    if (algn == "ctr") return 2;
    if (algn == "r") return 3;
    if (algn == "just") return 4;
    return 1;
}

// The list-style levels a paragraph at `level` (1-based) takes its look from, nearest
// first: the shape's list style, the layout's and master's placeholder, the master's
// text style for the placeholder's kind, the presentation's default.
QList<pugi::xml_node> Deck::styleLevels(const QString& part, pugi::xml_node shape, pugi::xml_node txBody, int level)
{
    const QByteArray lvl = QStringLiteral("lvl%1pPr").arg(level).toLatin1();
    QList<pugi::xml_node> chain;
    chain << Child(Child(txBody, "lstStyle"), lvl.constData());
    QString style = QStringLiteral("otherStyle");
    if (pugi::xml_node ph = phOf(shape)) {
        const QString type = str(ph.attribute("type").value());
        style = (type == "title" || type == "ctrTitle") ? "titleStyle"
                : (type.isEmpty() || type == "body" || type == "obj" || type == "subTitle") ? "bodyStyle"
                                                                                           : "otherStyle";
        for (int source = 1; source <= 2; ++source)
            if (pugi::xml_node inherited = inheritedPlaceholder(part, shape, source))
                chain << Child(Child(textBody(inherited), "lstStyle"), lvl.constData());
    }
    const QString master = masterOf(layoutOf(part));
    if (!master.isEmpty() && pkg_.has(master))
        chain << Child(Child(Child(pkg_.xml(master).document_element(), "txStyles"), style.toLatin1().constData()),
                       lvl.constData());
    chain << Child(Child(pkg_.xml(presentationPart_).document_element(), "defaultTextStyle"), lvl.constData());
    return chain;
}

bool Deck::numbered(const QString& part, pugi::xml_node shape, pugi::xml_node txBody)
{
    pugi::xml_node pPr = Child(Child(txBody, "p"), "pPr");
    const int level = qBound(1, pPr.attribute("lvl").as_int() + 1, 9);
    QList<pugi::xml_node> chain{pPr};
    chain << styleLevels(part, shape, txBody, level);
    // The nearest level that says anything about a bullet decides; a bullet's font or
    // colour alone says nothing.
    for (pugi::xml_node props : chain)
        for (pugi::xml_node c : props.children()) {
            const QString local = LocalName(c);
            if (local == "buAutoNum")
                return true;
            if (local == "buChar" || local == "buNone" || local == "buBlip")
                return false;
        }
    return false;
}

Font Deck::font(const QString& part, pugi::xml_node shape, pugi::xml_node txBody)
{
    // Each property comes from the nearest level that sets it: the run, then the levels
    // of the list styles.
    QList<pugi::xml_node> chain;
    pugi::xml_node p = Child(txBody, "p");
    if (pugi::xml_node r = Child(p, "r"))
        chain << Child(r, "rPr");
    chain << Child(p, "endParaRPr");
    for (pugi::xml_node level : styleLevels(part, shape, txBody, 1))
        chain << Child(level, "defRPr");

    Font f;
    bool size = false, bold = false, italic = false, underline = false, name = false, colour = false;
    for (pugi::xml_node rPr : chain) {
        if (!rPr)
            continue;
        if (!size && rPr.attribute("sz")) { f.Size = rPr.attribute("sz").as_int() / 100.0; size = true; }
        if (!bold && rPr.attribute("b")) { f.Bold = rPr.attribute("b").as_bool(); bold = true; }
        if (!italic && rPr.attribute("i")) { f.Italic = rPr.attribute("i").as_bool(); italic = true; }
        if (!underline && rPr.attribute("u")) { f.Underline = str(rPr.attribute("u").value()) != "none"; underline = true; }
        if (!name && Child(rPr, "latin")) { f.Name = str(Child(rPr, "latin").attribute("typeface").value()); name = true; }
        if (!colour && Child(rPr, "solidFill")) {
            pugi::xml_node fill = Child(rPr, "solidFill");
            if (pugi::xml_node srgb = Child(fill, "srgbClr")) {
                const uint rgb = str(srgb.attribute("val").value()).toUInt(nullptr, 16);
                f.Color = long(((rgb & 0xFF) << 16) | (rgb & 0xFF00) | ((rgb >> 16) & 0xFF));
                colour = true;
            } else if (pugi::xml_node scheme = Child(fill, "schemeClr")) {
                static const QMap<QString, int> index{{"dk1", 1}, {"tx1", 1}, {"lt1", 2}, {"bg1", 2},
                                                      {"dk2", 3}, {"tx2", 3}, {"lt2", 4}, {"bg2", 4},
                                                      {"accent1", 5}, {"accent2", 6}, {"accent3", 7},
                                                      {"accent4", 8}, {"accent5", 9}, {"accent6", 10},
                                                      {"hlink", 11}, {"folHlink", 12}};
                f.Color = themeColor(index.value(str(scheme.attribute("val").value()), 1));
                colour = true;
            }
        }
    }
    // Theme font references name the theme's major or minor font.
    if (f.Name.startsWith('+')) {
        const QString theme = themeOf();
        if (!theme.isEmpty() && pkg_.has(theme)) {
            pugi::xml_node fonts = Child(Child(pkg_.xml(theme).document_element(), "themeElements"), "fontScheme");
            pugi::xml_node which = Child(fonts, f.Name.startsWith("+mj") ? "majorFont" : "minorFont");
            f.Name = str(Child(which, "latin").attribute("typeface").value());
        }
    }
    return f;
}

int Deck::placeholderType(pugi::xml_node shape)
{
    pugi::xml_node ph = phOf(shape);
    if (!ph)
        return PlaceholderType::None;
    static const QMap<QString, int> types{
        {"title", PlaceholderType::Title}, {"body", PlaceholderType::Body},
        {"ctrTitle", PlaceholderType::CenterTitle}, {"subTitle", PlaceholderType::Subtitle},
        {"obj", PlaceholderType::Object}, {"chart", PlaceholderType::Chart},
        {"clipArt", PlaceholderType::Bitmap}, {"media", PlaceholderType::MediaClip},
        {"dgm", PlaceholderType::OrgChart}, {"tbl", PlaceholderType::Table},
        {"sldNum", PlaceholderType::SlideNumber}, {"hdr", PlaceholderType::Header},
        {"ftr", PlaceholderType::Footer}, {"dt", PlaceholderType::Date},
        {"pic", PlaceholderType::Picture}};
    if (!ph.attribute("type"))
        return PlaceholderType::Object;
    return types.value(str(ph.attribute("type").value()), PlaceholderType::None);
}

int Deck::autoShapeType(pugi::xml_node shape)
{
    shape = effective(shape);
    if (LocalName(shape) != "sp")
        return AutoShape::Mixed;
    if (phOf(shape))
        return AutoShape::Rectangle;
    const QString prst = str(Child(Child(shape, "spPr"), "prstGeom").attribute("prst").value());
    if (prst == "rect") return AutoShape::Rectangle;
    if (prst == "roundRect") return AutoShape::RoundedRectangle;
    if (prst == "ellipse") return AutoShape::Oval;
    return prst.isEmpty() ? AutoShape::Mixed : 0;
}

bool Deck::lockAspect(pugi::xml_node shape)
{
    for (pugi::xml_node c : nvProps(shape).children())
        if (LocalName(c).startsWith("cNv") && LocalName(c) != "cNvPr")
            for (pugi::xml_node lock : c.children())
                if (LocalName(lock).endsWith("Locks"))
                    return lock.attribute("noChangeAspect").as_bool();
    return false;
}

bool Deck::animated(const QString& part, pugi::xml_node shape)
{
    const QByteArray id = QByteArray::number(shapeId(shape));
    pugi::xml_node timing = Child(pkg_.xml(part).document_element(), "timing");
    bool found = false;
    std::function<void(pugi::xml_node)> walk = [&](pugi::xml_node n) {
        for (pugi::xml_node c : n.children()) {
            if (found || c.type() != pugi::node_element)
                continue;
            if (LocalName(c) == "spTgt" && id == c.attribute("spid").value())
                found = true;
            walk(c);
        }
    };
    walk(timing);
    return found;
}

int Deck::mainSequenceCount(qint64 id)
{
    int count = 0;
    pugi::xml_node timing = Child(pkg_.xml(slidePart(id)).document_element(), "timing");
    std::function<void(pugi::xml_node)> walk = [&](pugi::xml_node n) {
        for (pugi::xml_node c : n.children()) {
            if (c.type() != pugi::node_element)
                continue;
            if (LocalName(c) == "cTn" && c.attribute("presetClass"))
                ++count;
            walk(c);
        }
    };
    std::function<void(pugi::xml_node)> find = [&](pugi::xml_node n) {
        for (pugi::xml_node c : n.children()) {
            if (c.type() != pugi::node_element)
                continue;
            if (LocalName(c) == "cTn" && str(c.attribute("nodeType").value()) == "mainSeq")
                walk(c);
            else
                find(c);
        }
    };
    find(timing);
    return count;
}

int Deck::interactiveSequenceCount(qint64 id)
{
    int count = 0;
    pugi::xml_node timing = Child(pkg_.xml(slidePart(id)).document_element(), "timing");
    std::function<void(pugi::xml_node)> walk = [&](pugi::xml_node n) {
        for (pugi::xml_node c : n.children()) {
            if (c.type() != pugi::node_element)
                continue;
            if (LocalName(c) == "cTn" && str(c.attribute("nodeType").value()) == "interactiveSeq")
                ++count;
            walk(c);
        }
    };
    walk(timing);
    return count;
}

// ---- tags ----

pugi::xml_node Deck::tagList(qint64 slideId, bool create, QString* tagPart)
{
    const QString owner = ownerPart(slideId);
    pugi::xml_node root = pkg_.xml(owner).document_element();
    pugi::xml_node parent = slideId ? Child(root, "cSld") : root;
    pugi::xml_node list = Child(parent, "custDataLst");
    pugi::xml_node tags = Child(list, "tags");
    QString part = tags ? pkg_.target(owner, str(relAttr(tags, "id").value())) : QString();
    if (!part.isEmpty() && pkg_.has(part)) {
        *tagPart = part;
        return pkg_.xml(part).document_element();
    }
    if (!create)
        return {};
    part = pkg_.freeName(QStringLiteral("ppt/tags/tag%1.xml"));
    pkg_.setXml(part, QByteArray("<?xml version=\"1.0\" encoding=\"UTF-8\" standalone=\"yes\"?>\r\n"
                                 "<p:tagLst xmlns:a=\"") + Ns::A + "\" xmlns:r=\"" + Ns::R +
                          "\" xmlns:p=\"" + Ns::P + "\"/>");
    pkg_.setOverride(part, QStringLiteral("application/vnd.openxmlformats-officedocument.presentationml.tags+xml"));
    const QString rid = pkg_.addRel(owner, Rel::Tags, part);
    if (!list)
        list = InsertInOrder(parent, P(root, "custDataLst").constData(), slideId ? kCSldOrder : kPresentationOrder);
    if (!tags)
        tags = list.append_child(P(root, "tags").constData()); // tags come last in the list
    if (relAttr(tags, "id"))
        relAttr(tags, "id") = utf8(rid).constData();
    else
        tags.append_attribute(R(root, "id").constData()) = utf8(rid).constData();
    pkg_.touch(owner);
    *tagPart = part;
    return pkg_.xml(part).document_element();
}

QList<QPair<QString, QString>> Deck::tags(qint64 slideId)
{
    QList<QPair<QString, QString>> out;
    QString part;
    pugi::xml_node list = tagList(slideId, false, &part);
    for (pugi::xml_node t : list.children())
        if (LocalName(t) == "tag")
            out.append({str(t.attribute("name").value()), str(t.attribute("val").value())});
    return out;
}

QString Deck::tag(qint64 slideId, const QString& name)
{
    for (const auto& [n, v] : tags(slideId))
        if (n.compare(name, Qt::CaseInsensitive) == 0)
            return v;
    return {};
}

long Deck::themeColor(int index)
{
    static const char* names[] = {"dk1", "lt1", "dk2", "lt2", "accent1", "accent2", "accent3",
                                  "accent4", "accent5", "accent6", "hlink", "folHlink"};
    if (index < 1 || index > 12)
        Raise(ErrNo::InvalidProcedureCall, QStringLiteral("The index into the specified collection is out of bounds."));
    const QString theme = themeOf();
    if (theme.isEmpty() || !pkg_.has(theme))
        return 0;
    pugi::xml_node scheme = Child(Child(pkg_.xml(theme).document_element(), "themeElements"), "clrScheme");
    pugi::xml_node c = Child(scheme, names[index - 1]);
    QString hex;
    if (pugi::xml_node srgb = Child(c, "srgbClr"))
        hex = str(srgb.attribute("val").value());
    else if (pugi::xml_node sys = Child(c, "sysClr"))
        hex = str(sys.attribute("lastClr").value());
    const uint rgb = hex.toUInt(nullptr, 16);
    return long(((rgb & 0xFF) << 16) | (rgb & 0xFF00) | ((rgb >> 16) & 0xFF));
}

// ---- notes ----

QString Deck::notesPart(qint64 id, bool create)
{
    const QString slide = slidePart(id);
    for (const Relationship& rel : pkg_.rels(slide))
        if (rel.type == Rel::NotesSlide)
            return pkg_.resolve(slide, rel.target);
    if (!create)
        return {};
    pugi::xml_node pres = pkg_.xml(presentationPart_).document_element();
    QString master;
    if (pugi::xml_node nm = Child(Child(pres, "notesMasterIdLst"), "notesMasterId"))
        master = pkg_.target(presentationPart_, str(relAttr(nm, "id").value()));
    if (master.isEmpty()) {
        master = pkg_.freeName(QStringLiteral("ppt/notesMasters/notesMaster%1.xml"));
        pkg_.setXml(master, kNotesMasterXml);
        pkg_.setOverride(master, "application/vnd.openxmlformats-officedocument.presentationml.notesMaster+xml");
        const QString theme = pkg_.freeName(QStringLiteral("ppt/theme/theme%1.xml"));
        pkg_.setBytes(theme, pkg_.bytes(themeOf()));
        pkg_.setOverride(theme, "application/vnd.openxmlformats-officedocument.theme+xml");
        pkg_.addRel(master, Rel::Theme, theme);
        const QString rid = pkg_.addRel(presentationPart_, Rel::NotesMaster, master);
        pugi::xml_node list = InsertInOrder(pres, P(pres, "notesMasterIdLst").constData(), kPresentationOrder);
        list.append_child(P(pres, "notesMasterId").constData()).append_attribute(R(pres, "id").constData()) =
            utf8(rid).constData();
        pkg_.touch(presentationPart_);
    }
    const QString notes = pkg_.freeName(QStringLiteral("ppt/notesSlides/notesSlide%1.xml"));
    pkg_.setXml(notes, kNotesSlideXml);
    pkg_.setOverride(notes, "application/vnd.openxmlformats-officedocument.presentationml.notesSlide+xml");
    pkg_.addRel(notes, Rel::NotesMaster, master);
    pkg_.addRel(notes, Rel::Slide, slide);
    pkg_.addRel(slide, Rel::NotesSlide, notes);
    return notes;
}

// ---- changes ----

int Deck::nextShapeId(const QString& part)
{
    QSet<int> ids;
    collectIds(pkg_.xml(part).document_element(), ids);
    int id = 1;
    for (int used : ids)
        id = qMax(id, used + 1);
    return id;
}

pugi::xml_node Deck::appendShapeNode(const QString& part, const char* xml)
{
    pugi::xml_document& doc = pkg_.xml(part);
    pugi::xml_node tree = Child(Child(doc.document_element(), "cSld"), "spTree");
    // New shapes are written with the usual prefixes; make sure the part binds them.
    for (const auto& [prefix, uri] : {std::pair{"xmlns:p", Ns::P}, std::pair{"xmlns:a", Ns::A}, std::pair{"xmlns:r", Ns::R}})
        if (!doc.document_element().attribute(prefix))
            doc.document_element().append_attribute(prefix) = uri;
    // Parse inside the slide's own namespace declarations.
    QByteArray wrapper = "<w";
    for (pugi::xml_attribute a : doc.document_element().attributes())
        if (QByteArray(a.name()).startsWith("xmlns"))
            wrapper += QByteArray(" ") + a.name() + "=\"" + a.value() + "\"";
    wrapper += QByteArray(">") + xml + "</w>";
    pugi::xml_document fragment;
    if (!fragment.load_buffer(wrapper.constData(), size_t(wrapper.size()), XmlParseOptions()))
        Raise(ErrNo::HostUnexpected, QStringLiteral("cannot build a shape"));
    pugi::xml_node node = fragment.document_element().first_child();
    pugi::xml_node ext = Child(tree, "extLst");
    pugi::xml_node added = ext ? tree.insert_copy_before(node, ext) : tree.append_copy(node);
    pkg_.touch(part);
    return added;
}

void Deck::setXfrm(pugi::xml_node shape, const QRectF& r)
{
    pugi::xml_node s = effective(shape);
    const QString local = LocalName(s);
    pugi::xml_node x = xfrmOf(s);
    if (!x) {
        if (local == "graphicFrame") {
            x = s.insert_child_after(P(s, "xfrm").constData(), nvProps(s));
        } else {
            pugi::xml_node pr = Child(s, local == "grpSp" ? "grpSpPr" : "spPr");
            if (!pr)
                pr = s.insert_child_after(P(s, local == "grpSp" ? "grpSpPr" : "spPr").constData(), nvProps(s));
            x = InsertInOrder(pr, A(s, "xfrm").constData(), kSpPrOrder);
        }
    }
    pugi::xml_node off = Child(x, "off"), ext = Child(x, "ext");
    if (!off)
        off = x.prepend_child(A(s, "off").constData());
    if (!ext)
        ext = x.insert_child_after(A(s, "ext").constData(), off);
    auto set = [](pugi::xml_node n, const char* a, qint64 v) {
        if (!n.attribute(a))
            n.append_attribute(a);
        n.attribute(a) = static_cast<long long>(v);
    };
    // A group keeps its children where they are: its child frame moves with it.
    if (local == "grpSp") {
        pugi::xml_node chOff = Child(x, "chOff"), chExt = Child(x, "chExt");
        if (!chOff) {
            chOff = x.append_child(A(s, "chOff").constData());
            set(chOff, "x", off.attribute("x").as_llong());
            set(chOff, "y", off.attribute("y").as_llong());
        }
        if (!chExt) {
            chExt = x.append_child(A(s, "chExt").constData());
            set(chExt, "cx", ext.attribute("cx").as_llong());
            set(chExt, "cy", ext.attribute("cy").as_llong());
        }
    }
    set(off, "x", emu(r.left()));
    set(off, "y", emu(r.top()));
    set(ext, "cx", emu(r.width()));
    set(ext, "cy", emu(r.height()));
}

void Deck::removeTimingFor(const QString& part, const QSet<int>& ids)
{
    pugi::xml_node root = pkg_.xml(part).document_element();
    pugi::xml_node timing = Child(root, "timing");
    if (!timing)
        return;
    auto hasElement = [](pugi::xml_node n) {
        for (pugi::xml_node c : n.children())
            if (c.type() == pugi::node_element)
                return true;
        return false;
    };
    std::function<pugi::xml_node(pugi::xml_node)> findTarget = [&](pugi::xml_node n) -> pugi::xml_node {
        for (pugi::xml_node c : n.children()) {
            if (c.type() != pugi::node_element)
                continue;
            if (LocalName(c) == "spTgt" && ids.contains(c.attribute("spid").as_int()))
                return c;
            if (pugi::xml_node found = findTarget(c))
                return found;
        }
        return {};
    };
    // One target at a time: removing one may take others with it.
    while (pugi::xml_node t = findTarget(Child(timing, "tnLst"))) {
        // The effect (or the trigger's sequence) that names the shape goes, then
        // every time node that this leaves empty.
        pugi::xml_node n = t;
        while (n && LocalName(n) != "par" && LocalName(n) != "seq" && n != timing)
            n = n.parent();
        if (!n || n == timing) {
            t.parent().remove_child(t);
            continue;
        }
        for (;;) {
            pugi::xml_node list = n.parent();
            list.remove_child(n);
            if (hasElement(list))
                break;
            if (LocalName(list) == "tnLst") {
                root.remove_child(timing);
                pkg_.touch(part);
                return;
            }
            pugi::xml_node ctn = list.parent();
            pugi::xml_node holder = ctn.parent();
            if (LocalName(ctn) != "cTn" || (LocalName(holder) != "par" && LocalName(holder) != "seq"))
                break;
            n = holder;
        }
    }
    if (pugi::xml_node bld = Child(timing, "bldLst")) {
        QList<pugi::xml_node> gone;
        for (pugi::xml_node b : bld.children())
            if (b.type() == pugi::node_element && ids.contains(b.attribute("spid").as_int()))
                gone << b;
        for (pugi::xml_node b : gone)
            bld.remove_child(b);
        if (!hasElement(bld))
            timing.remove_child(bld);
    }
    pkg_.touch(part);
}

void Deck::dropUnusedImages(const QString& part, const QStringList& rids)
{
    pugi::xml_node root = pkg_.xml(part).document_element();
    const QByteArray rPrefix = prefixFor(root, Ns::R, "r");
    for (const QString& rid : rids) {
        if (usesRelId(root, rPrefix, utf8(rid)))
            continue;
        QString target;
        for (const Relationship& rel : pkg_.rels(part))
            if (rel.id == rid && rel.type == Rel::Image && !rel.external)
                target = pkg_.resolve(part, rel.target);
        if (target.isEmpty())
            continue;
        pkg_.removeRel(part, rid);
        bool used = false;
        for (const QString& name : pkg_.partNames()) {
            if (!name.endsWith(".rels"))
                continue;
            const QString source = name == "_rels/.rels" ? QString()
                                                         : QString(name).remove("_rels/").chopped(5);
            for (const Relationship& rel : pkg_.rels(source))
                if (!rel.external && pkg_.resolve(source, rel.target) == target)
                    used = true;
        }
        // Only a picture goes with its last use: a relationship that points elsewhere
        // (a broken deck's, at the content types or a part's relationships) takes nothing.
        if (!used && pkg_.contentType(target).startsWith("image/"))
            pkg_.remove(target);
    }
}

Clip Deck::copy(const QString& part, pugi::xml_node shape)
{
    Clip clip;
    pugi::xml_document& doc = pkg_.xml(part);
    pugi::xml_document out;
    pugi::xml_node w = out.append_child("w");
    for (pugi::xml_attribute a : doc.document_element().attributes())
        if (QByteArray(a.name()).startsWith("xmlns"))
            w.append_attribute(a.name()) = a.value();
    w.append_copy(shape);
    clip.xml = XmlBytes(out);
    QStringList rids;
    collectRelIds(shape, rids);
    for (const QString& rid : rids)
        for (const Relationship& rel : pkg_.rels(part))
            if (rel.id == rid && rel.type == Rel::Image && !rel.external) {
                const QString target = pkg_.resolve(part, rel.target);
                clip.images.insert(rid, {target.section('.', -1), pkg_.bytes(target)});
            }
    return clip;
}

int Deck::apply(const Op& op, const Clip* clip)
{
    if (op.kind == Op::TagSet || op.kind == Op::TagAppend || op.kind == Op::TagDelete) {
        QString part;
        pugi::xml_node list = tagList(op.slideId, op.kind != Op::TagDelete, &part);
        if (!list)
            return 0;
        pugi::xml_node found;
        for (pugi::xml_node t : list.children())
            if (LocalName(t) == "tag" && str(t.attribute("name").value()).compare(op.name, Qt::CaseInsensitive) == 0)
                found = t;
        if (op.kind == Op::TagDelete) {
            if (found) {
                list.remove_child(found);
                pkg_.touch(part);
            }
            return 0;
        }
        QString value = xmlSafe(op.value);
        if (op.kind == Op::TagAppend && found)
            value = str(found.attribute("val").value()) + value;
        if (!found) {
            found = list.append_child(P(list, "tag").constData());
            found.append_attribute("name");
            found.append_attribute("val");
        }
        // The host writes tag names upper-case; reading compares without case.
        found.attribute("name") = utf8(xmlSafe(op.name).toUpper()).constData();
        found.attribute("val") = utf8(value).constData();
        pkg_.touch(part);
        return 0;
    }

    const QString part = op.notes ? notesPart(op.slideId, true) : slidePart(op.slideId);
    pugi::xml_node tree = Child(Child(pkg_.xml(part).document_element(), "cSld"), "spTree");

    switch (op.kind) {
    case Op::AddPicture: {
        const QString ext = op.value.toLower();
        pkg_.ensureDefault(ext, contentTypeForExtension(ext));
        const QString media = pkg_.freeName(QStringLiteral("ppt/media/image%1.") + ext);
        pkg_.setBytes(media, op.data);
        const QString rid = pkg_.addRel(part, Rel::Image, media);
        const int id = nextShapeId(part);
        QRectF r(op.geometry[0], op.geometry[1], op.geometry[2], op.geometry[3]);
        const QSizeF own = nativeSize(op.data, ext);
        if (r.width() <= 0)
            r.setWidth(own.width() > 0 ? own.width() : 72);
        if (r.height() <= 0)
            r.setHeight(own.height() > 0 ? own.height() : 72);
        const QByteArray xml =
            QStringLiteral("<p:pic><p:nvPicPr><p:cNvPr id=\"%1\" name=\"%2\" descr=\"%3\"/>"
                           "<p:cNvPicPr><a:picLocks noChangeAspect=\"1\"/></p:cNvPicPr><p:nvPr/></p:nvPicPr>"
                           "<p:blipFill><a:blip r:embed=\"%4\"/><a:stretch><a:fillRect/></a:stretch></p:blipFill>"
                           "<p:spPr><a:xfrm><a:off x=\"%5\" y=\"%6\"/><a:ext cx=\"%7\" cy=\"%8\"/></a:xfrm>"
                           "<a:prstGeom prst=\"rect\"><a:avLst/></a:prstGeom></p:spPr></p:pic>")
                .arg(id).arg(escapeXml(op.name), escapeXml(op.names.value(0)), rid)
                .arg(emu(r.left())).arg(emu(r.top())).arg(emu(r.width())).arg(emu(r.height()))
                .toUtf8();
        appendShapeNode(part, xml.constData());
        return id;
    }
    case Op::AddShape:
    case Op::AddTextbox: {
        const int id = nextShapeId(part);
        const bool box = op.kind == Op::AddTextbox;
        const QString prst = op.number == AutoShape::Oval ? "ellipse"
                             : op.number == AutoShape::RoundedRectangle ? "roundRect" : "rect";
        const QString style = box ? QString()
                                  : "<p:style><a:lnRef idx=\"2\"><a:schemeClr val=\"accent1\"><a:shade val=\"50000\"/></a:schemeClr></a:lnRef>"
                                    "<a:fillRef idx=\"1\"><a:schemeClr val=\"accent1\"/></a:fillRef>"
                                    "<a:effectRef idx=\"0\"><a:schemeClr val=\"accent1\"/></a:effectRef>"
                                    "<a:fontRef idx=\"minor\"><a:schemeClr val=\"lt1\"/></a:fontRef></p:style>";
        const QByteArray xml =
            QStringLiteral("<p:sp><p:nvSpPr><p:cNvPr id=\"%1\" name=\"%2\"/><p:cNvSpPr%3/><p:nvPr/></p:nvSpPr>"
                           "<p:spPr><a:xfrm><a:off x=\"%4\" y=\"%5\"/><a:ext cx=\"%6\" cy=\"%7\"/></a:xfrm>"
                           "<a:prstGeom prst=\"%8\"><a:avLst/></a:prstGeom>%9</p:spPr>%10"
                           "<p:txBody><a:bodyPr%11 rtlCol=\"0\"%12</a:bodyPr><a:lstStyle/><a:p><a:endParaRPr lang=\"en-US\"/></a:p></p:txBody></p:sp>")
                .arg(id).arg(escapeXml(op.name), box ? " txBox=\"1\"" : "")
                .arg(emu(op.geometry[0])).arg(emu(op.geometry[1])).arg(emu(op.geometry[2])).arg(emu(op.geometry[3]))
                .arg(prst, box ? "<a:noFill/>" : "", style, box ? " wrap=\"square\"" : "", box ? "><a:spAutoFit/>" : " anchor=\"ctr\">")
                .toUtf8();
        appendShapeNode(part, xml.constData());
        return id;
    }
    case Op::AddTable: {
        const int id = nextShapeId(part);
        QString cells;
        for (int c = 0; c < op.column; ++c)
            cells += "<a:tc><a:txBody><a:bodyPr/><a:lstStyle/><a:p><a:endParaRPr lang=\"en-US\"/></a:p></a:txBody><a:tcPr/></a:tc>";
        QString grid, rows;
        for (int c = 0; c < op.column; ++c)
            grid += "<a:gridCol w=\"0\"/>";
        for (int r = 0; r < op.row; ++r)
            rows += "<a:tr h=\"0\">" + cells + "</a:tr>";
        // The presentation's default table style, as the host's own new table takes it.
        const QByteArray xml =
            QStringLiteral("<p:graphicFrame><p:nvGraphicFramePr><p:cNvPr id=\"%1\" name=\"%2\"/>"
                           "<p:cNvGraphicFramePr><a:graphicFrameLocks noGrp=\"1\"/></p:cNvGraphicFramePr><p:nvPr/></p:nvGraphicFramePr>"
                           "<p:xfrm><a:off x=\"%3\" y=\"%4\"/><a:ext cx=\"%5\" cy=\"%6\"/></p:xfrm>"
                           "<a:graphic><a:graphicData uri=\"http://schemas.openxmlformats.org/drawingml/2006/table\">"
                           "<a:tbl><a:tblPr firstRow=\"1\" bandRow=\"1\"><a:tableStyleId>{5C22544A-7EE6-4342-B048-85BDC9FD1C3A}</a:tableStyleId></a:tblPr>"
                           "<a:tblGrid>%7</a:tblGrid>%8</a:tbl></a:graphicData></a:graphic></p:graphicFrame>")
                .arg(id).arg(escapeXml(op.name))
                .arg(emu(op.geometry[0])).arg(emu(op.geometry[1])).arg(emu(op.geometry[2])).arg(emu(op.geometry[3]))
                .arg(grid, rows)
                .toUtf8();
        pugi::xml_node frame = appendShapeNode(part, xml.constData());
        fitTableGrid(table(frame), emu(op.geometry[2]), emu(op.geometry[3]));
        return id;
    }
    case Op::Group: {
        QList<pugi::xml_node> members;
        for (const QString& n : op.names) {
            pugi::xml_node s = findShape(part, n);
            if (!s)
                notFound(n);
            if (!members.contains(s))
                members << s;
        }
        if (members.isEmpty())
            Raise(ErrNo::HostUnexpected, QStringLiteral("Shapes.Range.Group : No shapes to group."));
        QRectF box;
        for (pugi::xml_node s : members) {
            const QRectF r = geometry(part, s);
            if (!xfrmOf(s))
                setXfrm(s, r); // a placeholder's inherited place becomes its own
            box = box.isNull() ? r : box.united(r);
        }
        const int id = nextShapeId(part);
        pugi::xml_node top = members.first();
        for (pugi::xml_node s : members)
            for (pugi::xml_node c = top; c; c = c.next_sibling())
                if (c == s)
                    top = s;
        const QString xml = QStringLiteral(
            "<p:grpSp><p:nvGrpSpPr><p:cNvPr id=\"%1\" name=\"%2\"/><p:cNvGrpSpPr/><p:nvPr/></p:nvGrpSpPr>"
            "<p:grpSpPr><a:xfrm><a:off x=\"%3\" y=\"%4\"/><a:ext cx=\"%5\" cy=\"%6\"/>"
            "<a:chOff x=\"%3\" y=\"%4\"/><a:chExt cx=\"%5\" cy=\"%6\"/></a:xfrm></p:grpSpPr></p:grpSp>")
                                .arg(id).arg(escapeXml(op.name))
                                .arg(emu(box.left())).arg(emu(box.top())).arg(emu(box.width())).arg(emu(box.height()));
        pugi::xml_node group = appendShapeNode(part, xml.toUtf8().constData());
        group = tree.insert_move_after(group, top);
        for (pugi::xml_node s : members)
            group.append_move(s);
        return id;
    }
    case Op::Paste: {
        if (!clip || clip->xml.isEmpty())
            Raise(ErrNo::HostUnexpected, QStringLiteral("Shapes.Paste : Invalid request.  Clipboard is empty or contains data which may not be pasted here."));
        pugi::xml_document fragment;
        fragment.load_buffer(clip->xml.constData(), size_t(clip->xml.size()), XmlParseOptions());
        pugi::xml_node shape = fragment.document_element().first_child();
        // Fresh ids, and the pictures brought along.
        int id = nextShapeId(part);
        const int first = id;
        std::function<void(pugi::xml_node)> renumber = [&](pugi::xml_node n) {
            for (pugi::xml_node c : n.children()) {
                if (c.type() != pugi::node_element)
                    continue;
                if (LocalName(c) == "cNvPr")
                    c.attribute("id") = id++;
                renumber(c);
            }
        };
        renumber(shape);
        QMap<QString, QString> newRids;
        for (auto it = clip->images.constBegin(); it != clip->images.constEnd(); ++it) {
            pkg_.ensureDefault(it->first, contentTypeForExtension(it->first));
            const QString media = pkg_.freeName(QStringLiteral("ppt/media/image%1.") + it->first);
            pkg_.setBytes(media, it->second);
            newRids.insert(it.key(), pkg_.addRel(part, Rel::Image, media));
        }
        const QByteArray rPrefix = prefixFor(fragment.document_element(), Ns::R, "r");
        std::function<void(pugi::xml_node)> relink = [&](pugi::xml_node n) {
            for (pugi::xml_attribute a : n.attributes())
                if (QByteArray(a.name()).startsWith(rPrefix) && newRids.contains(str(a.value())))
                    a = utf8(newRids.value(str(a.value()))).constData();
            for (pugi::xml_node c : n.children())
                if (c.type() == pugi::node_element)
                    relink(c);
        };
        relink(shape);
        cNvPr(shape).attribute("name") = utf8(op.name).constData();
        pugi::xml_node ext = Child(tree, "extLst");
        ext ? tree.insert_copy_before(shape, ext) : tree.append_copy(shape);
        pkg_.touch(part);
        return first;
    }
    default:
        break;
    }

    pugi::xml_node shape = findShape(part, op.shape, op.shapeId);
    if (!shape)
        notFound(op.shape);
    pugi::xml_node nv = cNvPr(shape);
    switch (op.kind) {
    case Op::Rename:
        nv.attribute("name") = utf8(xmlSafe(op.name)).constData();
        break;
    case Op::SetVisible:
        if (op.number)
            nv.remove_attribute("hidden");
        else if (nv.attribute("hidden"))
            nv.attribute("hidden") = "1";
        else
            nv.append_attribute("hidden") = "1";
        break;
    case Op::SetGeometry: {
        QRectF r = geometry(part, shape);
        const double v = op.geometry[0];
        switch (op.number) {
        case 0: r.moveLeft(v); break;
        case 1: r.moveTop(v); break;
        case 2: r.setWidth(v); break;
        default: r.setHeight(v); break;
        }
        setXfrm(shape, r);
        // A renderer sizes a table by its columns and rows, not by its frame.
        if (pugi::xml_node tbl = table(shape); tbl && op.number >= 2)
            fitTableGrid(tbl, op.number == 2 ? emu(r.width()) : -1, op.number == 3 ? emu(r.height()) : -1);
        break;
    }
    case Op::SetText: {
        pugi::xml_node body = op.row ? tableCellBody(shape, op.row, op.column) : textBody(shape);
        if (!body)
            Raise(ErrNo::HostUnexpected, QStringLiteral("This shape does not have a text frame."));
        pugi::xml_node firstP = Child(body, "p");
        pugi::xml_document keep;
        pugi::xml_node pPr = keep.append_copy(Child(firstP, "pPr"));
        // The first run's look, or, in an empty text, the look its end mark keeps for new text.
        pugi::xml_node rPr = Child(Child(firstP, "r"), "rPr");
        pugi::xml_node runProps;
        if (rPr) {
            runProps = keep.append_copy(rPr);
        } else if (pugi::xml_node end = Child(firstP, "endParaRPr")) {
            runProps = keep.append_copy(end);
            runProps.set_name(A(body, "rPr").constData());
        }
        QList<pugi::xml_node> old;
        for (pugi::xml_node p : body.children())
            if (LocalName(p) == "p")
                old << p;
        for (pugi::xml_node p : old)
            body.remove_child(p);
        QString text = op.value;
        text.replace("\r\n", "\r").replace('\n', '\r');
        const QByteArray aP = A(body, "p"), aR = A(body, "r"), aT = A(body, "t"), aBr = A(body, "br");
        const QByteArray aRPr = A(body, "rPr"), aEnd = A(body, "endParaRPr");
        for (const QString& para : text.split('\r')) {
            pugi::xml_node p = body.append_child(aP.constData());
            if (pPr)
                p.append_copy(pPr);
            const QStringList lines = para.split(QChar(11));
            for (int i = 0; i < lines.size(); ++i) {
                if (i > 0) {
                    pugi::xml_node br = p.append_child(aBr.constData());
                    if (runProps)
                        br.append_copy(runProps);
                }
                if (lines[i].isEmpty())
                    continue;
                pugi::xml_node r = p.append_child(aR.constData());
                if (runProps)
                    r.append_copy(runProps);
                else
                    r.append_child(aRPr.constData()).append_attribute("lang") = "en-US";
                r.append_child(aT.constData()).text() = utf8(xmlSafe(lines[i])).constData();
            }
            if (runProps) {
                p.append_copy(runProps).set_name(aEnd.constData());
            } else {
                pugi::xml_node end = p.append_child(aEnd.constData());
                end.append_attribute("lang") = "en-US";
            }
        }
        break;
    }
    case Op::ReplaceText: {
        pugi::xml_node body = op.row ? tableCellBody(shape, op.row, op.column) : textBody(shape);
        if (!body)
            Raise(ErrNo::HostUnexpected, QStringLiteral("This shape does not have a text frame."));
        replaceText(body, op.number, op.count, op.value);
        break;
    }
    case Op::AddRowCopy:
    case Op::DeleteRow: {
        pugi::xml_node tbl = table(shape);
        if (!tbl)
            Raise(ErrNo::HostUnexpected, QStringLiteral("This shape does not have a table."));
        QList<pugi::xml_node> rows;
        for (pugi::xml_node tr : tbl.children())
            if (LocalName(tr) == "tr")
                rows << tr;
        if (op.row < 1 || op.row > rows.size())
            Raise(ErrNo::ItemNotFound, QStringLiteral("Rows.Item : Integer out of range. %1 is not in the valid range of 1 to %2.")
                                           .arg(op.row).arg(rows.size()));
        pugi::xml_node tr = rows[op.row - 1];
        if (op.kind == Op::DeleteRow && rows.size() == 1)
            Raise(ErrNo::HostUnexpected, QStringLiteral("Row.Delete : A table keeps at least one row."));
        const qint64 height = qMax<qint64>(0, tr.attribute("h").as_llong());
        if (op.kind == Op::AddRowCopy) {
            pugi::xml_node copy = tbl.insert_copy_after(tr, tr);
            // The copy is a row of its own, never a part of a merge down the column.
            for (pugi::xml_node tc : copy.children()) {
                tc.remove_attribute("rowSpan");
                tc.remove_attribute("vMerge");
            }
        } else {
            tbl.remove_child(tr);
        }
        // The frame follows the rows, which are what a renderer draws.
        pugi::xml_node ext = Child(xfrmOf(shape), "ext");
        const qint64 cy = ext.attribute("cy").as_llong() + (op.kind == Op::AddRowCopy ? height : -height);
        setAttr(ext, "cy", QByteArray::number(qMax<qint64>(0, cy)));
        break;
    }
    case Op::SetFont: {
        pugi::xml_node body = op.row ? tableCellBody(shape, op.row, op.column) : textBody(shape);
        if (!body)
            Raise(ErrNo::HostUnexpected, QStringLiteral("This shape does not have a text frame."));
        const uint bgr = uint(op.number) & 0xFFFFFF;
        const QByteArray rgb =
            QByteArray::number(((bgr & 0xFF) << 16) | (bgr & 0xFF00) | ((bgr >> 16) & 0xFF), 16).rightJustified(6, '0').toUpper();
        const QByteArray aRPr = A(body, "rPr"), aEnd = A(body, "endParaRPr");
        for (pugi::xml_node p : body.children()) {
            if (LocalName(p) != "p")
                continue;
            for (pugi::xml_node r : p.children()) {
                const QString local = LocalName(r);
                if (local != "r" && local != "br" && local != "fld")
                    continue;
                pugi::xml_node props = Child(r, "rPr");
                if (!props)
                    props = r.prepend_child(aRPr.constData());
                setRunFont(props, op.name, op.geometry[0], rgb);
            }
            pugi::xml_node end = Child(p, "endParaRPr");
            if (!end) {
                end = p.append_child(aEnd.constData());
                end.append_attribute("lang") = "en-US";
            }
            setRunFont(end, op.name, op.geometry[0], rgb);
        }
        break;
    }
    case Op::SetLockAspect: {
        pugi::xml_node holder;
        for (pugi::xml_node c : nvProps(shape).children())
            if (LocalName(c).startsWith("cNv") && LocalName(c) != "cNvPr")
                holder = c;
        if (!holder)
            break;
        const QString kind = LocalName(holder);
        const char* lockName = kind == "cNvPicPr" ? "picLocks" : kind == "cNvGrpSpPr" ? "grpSpLocks"
                             : kind == "cNvGraphicFramePr" ? "graphicFrameLocks" : kind == "cNvCxnSpPr" ? "cxnSpLocks" : "spLocks";
        pugi::xml_node lock = Child(holder, lockName);
        if (!lock)
            lock = holder.prepend_child(A(holder, lockName).constData());
        if (!lock.attribute("noChangeAspect"))
            lock.append_attribute("noChangeAspect");
        lock.attribute("noChangeAspect") = op.number ? "1" : "0";
        break;
    }
    case Op::ClearAnimation:
        removeTimingFor(part, {shapeId(shape)});
        break;
    case Op::SetFillVisible:
    case Op::SetLineVisible: {
        pugi::xml_node spPr = Child(effective(shape), "spPr");
        if (!spPr)
            break;
        if (op.kind == Op::SetFillVisible) {
            for (const char* f : {"noFill", "solidFill", "gradFill", "blipFill", "pattFill", "grpFill"})
                if (pugi::xml_node old = Child(spPr, f); old && !op.number)
                    spPr.remove_child(old);
            if (!op.number)
                InsertInOrder(spPr, A(spPr, "noFill").constData(), kSpPrOrder);
            else if (pugi::xml_node nf = Child(spPr, "noFill"))
                spPr.remove_child(nf);
        } else {
            pugi::xml_node ln = Child(spPr, "ln");
            if (!ln)
                ln = InsertInOrder(spPr, A(spPr, "ln").constData(), kSpPrOrder);
            for (const char* f : {"noFill", "solidFill", "gradFill", "pattFill"})
                if (pugi::xml_node old = Child(ln, f); old && !op.number)
                    ln.remove_child(old);
            if (!op.number)
                ln.prepend_child(A(ln, "noFill").constData());
            else if (pugi::xml_node nf = Child(ln, "noFill"))
                ln.remove_child(nf);
        }
        break;
    }
    case Op::ZOrder: {
        QList<pugi::xml_node> all = shapes(part);
        const int at = all.indexOf(shape);
        switch (op.number) {
        case ZOrderCmd::SendToBack:
        case ZOrderCmd::SendBehindText:
            if (at > 0)
                tree.insert_move_before(shape, all.first());
            break;
        case ZOrderCmd::BringToFront:
        case ZOrderCmd::BringInFrontOfText:
            if (at < all.size() - 1)
                tree.insert_move_after(shape, all.last());
            break;
        case ZOrderCmd::BringForward:
            if (at < all.size() - 1)
                tree.insert_move_after(shape, all[at + 1]);
            break;
        case ZOrderCmd::SendBackward:
            if (at > 0)
                tree.insert_move_before(shape, all[at - 1]);
            break;
        default:
            Raise(ErrNo::InvalidProcedureCall, QStringLiteral("Invalid procedure call or argument"));
        }
        break;
    }
    case Op::Delete: {
        QSet<int> ids;
        ids.insert(shapeId(shape));
        collectIds(shape, ids);
        QStringList rids;
        collectRelIds(shape, rids);
        tree.remove_child(shape);
        removeTimingFor(part, ids);
        dropUnusedImages(part, rids);
        break;
    }
    default:
        break;
    }
    pkg_.touch(part);
    return 0;
}

} // namespace tallix::host

namespace tallix::host {

Deck Deck::blank(int slides)
{
    Package package;
    for (const auto& [name, bytes] : BlankDeckParts(slides))
        package.setBytes(name, bytes);
    return open(std::move(package));
}

} // namespace tallix::host
