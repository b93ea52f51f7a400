#pragma once
// A presentation document over its package: the slides in show order, their shapes,
// tags and notes, the theme, and every change the host makes, expressed by slide id
// and shape name so that it can be made again on a fresh copy of the file.

#include "package.h"

#include <QPair>
#include <QRectF>
#include <functional>

namespace tallix::host {

struct Font;

// One change to the document. Recorded by identity, not by XML node, so that it
// replays on a reloaded deck.
struct Op {
    enum Kind {
        TagSet, TagAppend, TagDelete,
        Rename, SetVisible, SetGeometry, SetText, ReplaceText, SetFont, SetLockAspect, ClearAnimation,
        SetFillVisible, SetLineVisible, ZOrder, Delete, AddRowCopy, DeleteRow,
        AddPicture, AddShape, AddTextbox, AddTable, Group, Paste,
    };
    Kind kind = TagSet;
    qint64 slideId = 0; // 0 with a tag operation: the presentation's tags
    bool notes = false; // the shape is on the slide's notes page
    QString shape;      // the shape's name
    int shapeId = 0;    // which one, when several share the name
    int row = 0, column = 0; // a table cell's text; with AddTable, the table's size; a row's number
    int count = 0;           // with ReplaceText, how many characters from `number` on
    QString name, value;
    int number = 0;
    double geometry[4] = {0, 0, 0, 0};
    QByteArray data;
    QStringList names;
};

// What Copy took: the shape's XML and the pictures it points at.
struct Clip {
    QByteArray xml; // a wrapper element carrying the slide's namespaces
    QMap<QString, QPair<QString, QByteArray>> images; // relationship id -> (extension, bytes)
};

class Deck {
public:
    Deck() = default;
    Deck(Deck&&) = default;
    Deck& operator=(Deck&&) = default;

    // Validates the whole document first; throws PackageError.
    static Deck open(Package package);
    static Deck fromFile(const QString& path, const PackageLimits& limits = {});
    // A valid deck of `slides` blank title-and-content slides, 16:9.
    static Deck blank(int slides);

    Package& package() { return pkg_; }
    QByteArray toZip() const { return pkg_.toZip(); }
    QString writeZipFile(const QString& path) const { return pkg_.writeZipFile(path); }

    // Slides.
    int slideCount() const { return int(slides_.size()); }
    qint64 slideIdAt(int index) const; // 1-based; 0 when out of range
    int slideIndexOf(qint64 id) const; // 1-based; 0 when absent
    QString slidePart(qint64 id) const;
    QString notesPart(qint64 id, bool create);
    double slideWidth() const { return slideWidthPt_; }
    double slideHeight() const { return slideHeightPt_; }
    int mainSequenceCount(qint64 id);
    int interactiveSequenceCount(qint64 id);
    QString slideName(qint64 id);

    // Shapes of a slide or notes part, back to front.
    QList<pugi::xml_node> shapes(const QString& part);
    // By name among the slide's own shapes; with an id, a group's member is found too,
    // since an id names one shape wherever it lies.
    pugi::xml_node findShape(const QString& part, const QString& name, int idHint = 0);
    // The shapes directly inside a group, back to front; none for any other shape.
    static QList<pugi::xml_node> groupMembers(pugi::xml_node group);

    // Reading a shape.
    static QString shapeName(pugi::xml_node shape);
    static int shapeId(pugi::xml_node shape);
    static bool shapeHidden(pugi::xml_node shape);
    QRectF geometry(const QString& part, pugi::xml_node shape); // points
    static pugi::xml_node textBody(pugi::xml_node shape);
    static pugi::xml_node table(pugi::xml_node shape);
    static pugi::xml_node tableCellBody(pugi::xml_node shape, int row, int column);
    static QStringList paragraphs(pugi::xml_node txBody);
    Font font(const QString& part, pugi::xml_node shape, pugi::xml_node txBody);
    // The first paragraph's effective bullet is an automatic number.
    bool numbered(const QString& part, pugi::xml_node shape, pugi::xml_node txBody);
    static int alignment(pugi::xml_node txBody);
    static int placeholderType(pugi::xml_node shape);
    static int autoShapeType(pugi::xml_node shape);
    static bool lockAspect(pugi::xml_node shape);
    bool animated(const QString& part, pugi::xml_node shape);
    static QString kindName(pugi::xml_node shape);

    // Tags: of the presentation (slideId 0) or of a slide.
    QList<QPair<QString, QString>> tags(qint64 slideId);
    QString tag(qint64 slideId, const QString& name);

    long themeColor(int index);

    Clip copy(const QString& part, pugi::xml_node shape);

    // Makes one change; returns the id of a shape it made, else 0. Throws VbError
    // when the slide or shape is not there.
    int apply(const Op& op, const Clip* clip = nullptr);

private:
    void load();
    QString presentationPart_;
    Package pkg_;
    struct SlideEntry {
        qint64 id;
        QString part;
    };
    QList<SlideEntry> slides_;
    double slideWidthPt_ = 720;
    double slideHeightPt_ = 540;

    pugi::xml_node tagList(qint64 slideId, bool create, QString* tagPart);
    QString ownerPart(qint64 slideId) const;
    QString layoutOf(const QString& part);
    QString masterOf(const QString& part);
    QString themeOf();
    pugi::xml_node inheritedPlaceholder(const QString& part, pugi::xml_node shape, int level);
    QList<pugi::xml_node> styleLevels(const QString& part, pugi::xml_node shape, pugi::xml_node txBody, int level);
    void removeTimingFor(const QString& part, const QSet<int>& ids);
    void dropUnusedImages(const QString& part, const QStringList& rids);
    int nextShapeId(const QString& part);
    pugi::xml_node appendShapeNode(const QString& part, const char* xml);
    void setXfrm(pugi::xml_node shape, const QRectF& pts);
};

// Schema order of children that PowerPoint insists on, for inserting at the right place.
pugi::xml_node InsertInOrder(pugi::xml_node parent, const char* qname, const QStringList& order);
QString LocalName(pugi::xml_node node);
pugi::xml_node Child(pugi::xml_node node, const char* local);

} // namespace tallix::host
