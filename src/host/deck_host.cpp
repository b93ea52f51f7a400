#include "deck_host.h"

#include "foundation/vb_error.h"

#include <QCoreApplication>
#include <QFile>
#include <QFileInfo>
#include <map>

namespace tallix::host {

namespace {

[[noreturn]] void outOfRange(const QString& member, int index, int count)
{
    Raise(ErrNo::ItemNotFound, QStringLiteral("%1 : Integer out of range. %2 is not in the valid range of 1 to %3.")
                                   .arg(member).arg(index).arg(count));
}

} // namespace

class TagsImpl : public Tags {
public:
    TagsImpl(DeckHost* host, qint64 slideId) : h(host), slideId(slideId) {}
    int Count() const override { return int(h->deck().tags(slideId).size()); }
    QString Name(int i) const override { return entry(i).first; }
    QString Value(int i) const override { return entry(i).second; }
    QString Item(const QString& name) const override { return h->deck().tag(slideId, name); }
    void Add(const QString& name, const QString& value) override
    {
        // A value that extends the old one is kept as an append: the saved-votes
        // pattern, whose first line lands on an empty tag.
        const QString old = Item(name);
        Op op;
        op.slideId = slideId;
        op.name = name;
        const bool extends = old.isEmpty() ? value.endsWith("\r\n") : value.startsWith(old);
        if (extends && value.size() > old.size()) {
            op.kind = Op::TagAppend;
            op.value = value.mid(old.size());
        } else {
            op.kind = Op::TagSet;
            op.value = value;
        }
        h->perform(op);
    }
    void Delete(const QString& name) override
    {
        Op op;
        op.kind = Op::TagDelete;
        op.slideId = slideId;
        op.name = name;
        h->perform(op);
    }
    void Append(const QString& name, const QString& text) override
    {
        Op op;
        op.kind = Op::TagAppend;
        op.slideId = slideId;
        op.name = name;
        op.value = text;
        h->perform(op);
    }

private:
    QPair<QString, QString> entry(int i) const
    {
        const auto all = h->deck().tags(slideId);
        if (i < 1 || i > all.size())
            outOfRange("Tags.Item", i, int(all.size()));
        return all[i - 1];
    }
    DeckHost* h;
    qint64 slideId;
};

class ShapeImpl;
class ShapesImpl;
class GroupItemsImpl;

class TextFrameImpl : public TextFrame {
public:
    TextFrameImpl(ShapeImpl* shape, int row, int column) : s(shape), row(row), column(column) {}
    QString Text() const override { return paragraphs().join('\r'); }
    void SetText(const QString& text) override;
    int ParagraphCount() const override { return int(paragraphs().size()); }
    QString Paragraph(int index) const override
    {
        const QStringList all = paragraphs();
        if (index < 1 || index > all.size())
            outOfRange("Paragraphs", index, int(all.size()));
        return all[index - 1];
    }
    Font GetFont() const override;
    int Alignment() const override;
    void SetFont(const QString& name, double size, long color) override;
    bool ParagraphsNumbered() const override;
    void ReplaceText(int start, int length, const QString& text) override;

private:
    QStringList paragraphs() const;
    ShapeImpl* s;
    int row, column;
};

class TableImpl : public Table {
public:
    explicit TableImpl(ShapeImpl* shape) : s(shape) {}
    int RowCount() const override;
    int ColumnCount() const override;
    TextFrame* Cell(int row, int column) override;
    int AddRowCopy(int row) override;
    void DeleteRow(int row) override;

private:
    void changeRow(Op::Kind kind, int row);
    ShapeImpl* s;
    std::map<std::pair<int, int>, std::unique_ptr<TextFrameImpl>> cells;
};

class ShapeImpl : public Shape {
public:
    ShapeImpl(DeckHost* host, ShapesImpl* owner, qint64 slideId, bool notes, const QString& name, int id)
        : h(host), owner(owner), slideId(slideId), notes(notes), name(name), id(id), text(this, 0, 0), table(this) {}
    ~ShapeImpl() override;

    QString part() const
    {
        return notes ? h->deck().notesPart(slideId, true) : h->deck().slidePart(slideId);
    }
    pugi::xml_node node() const
    {
        pugi::xml_node n = h->deck().findShape(part(), name, id);
        if (!n)
            Raise(ErrNo::HostUnexpected, QStringLiteral("Object does not exist (shape %1)").arg(name));
        return n;
    }
    Op op(Op::Kind kind) const
    {
        node(); // a deleted shape raises, as the host's did
        Op o;
        o.kind = kind;
        o.slideId = slideId;
        o.notes = notes;
        o.shape = name;
        o.shapeId = id;
        return o;
    }

    QString Name() const override { return Deck::shapeName(node()); }
    void SetName(const QString& newName) override
    {
        Op o = op(Op::Rename);
        o.name = newName;
        h->perform(o);
        name = newName;
    }
    int Id() const override { return Deck::shapeId(node()); }
    ShapeKind Kind() const override
    {
        const QString k = Deck::kindName(node());
        for (ShapeKind kind : {ShapeKind::Text, ShapeKind::Picture, ShapeKind::Group, ShapeKind::Table,
                               ShapeKind::Graphic, ShapeKind::Connector})
            if (ShapeKindName(kind) == k)
                return kind;
        return ShapeKind::Other;
    }
    bool Visible() const override { return !Deck::shapeHidden(node()); }
    void SetVisible(bool visible) override
    {
        Op o = op(Op::SetVisible);
        o.number = visible;
        h->perform(o);
    }
    QRectF rect() const { return h->deck().geometry(part(), node()); }
    double Left() const override { return rect().left(); }
    double Top() const override { return rect().top(); }
    double Width() const override { return rect().width(); }
    double Height() const override { return rect().height(); }
    void setGeometry(int which, double v)
    {
        Op o = op(Op::SetGeometry);
        o.number = which;
        o.geometry[0] = v;
        h->perform(o);
    }
    void SetLeft(double v) override { setGeometry(0, v); }
    void SetTop(double v) override { setGeometry(1, v); }
    void SetWidth(double v) override { setGeometry(2, v); }
    void SetHeight(double v) override { setGeometry(3, v); }
    bool HasTextFrame() const override { return bool(Deck::textBody(node())); }
    TextFrame* GetTextFrame() override
    {
        if (!HasTextFrame())
            Raise(ErrNo::HostUnexpected, QStringLiteral("TextFrame : This shape does not have a text frame."));
        return &text;
    }
    bool HasTable() const override { return bool(Deck::table(node())); }
    Table* GetTable() override
    {
        if (!HasTable())
            Raise(ErrNo::HostUnexpected, QStringLiteral("Table : This shape does not have a table."));
        return &table;
    }
    void ZOrder(int command) override
    {
        Op o = op(Op::ZOrder);
        o.number = command;
        h->perform(o);
    }
    void Delete() override { h->perform(op(Op::Delete)); }
    void Copy() override { h->setClipboard(h->deck().copy(part(), node())); }
    void Cut() override
    {
        Copy();
        Delete();
    }
    bool LockAspectRatio() const override { return Deck::lockAspect(node()); }
    void SetLockAspectRatio(bool lock) override
    {
        Op o = op(Op::SetLockAspect);
        o.number = lock;
        h->perform(o);
    }
    bool Animate() const override { return h->deck().animated(part(), node()); }
    void SetAnimate(bool animate) override
    {
        // Only taking an animation away has a meaning without a show program.
        if (!animate && Animate())
            h->perform(op(Op::ClearAnimation));
    }
    void SetFillVisible(bool visible) override
    {
        Op o = op(Op::SetFillVisible);
        o.number = visible;
        h->perform(o);
    }
    void SetLineVisible(bool visible) override
    {
        Op o = op(Op::SetLineVisible);
        o.number = visible;
        h->perform(o);
    }
    int PlaceholderFormatType() const override { return Deck::placeholderType(node()); }
    int AutoShapeType() const override { return Deck::autoShapeType(node()); }
    GroupShapes* GroupItems() override;

    DeckHost* h;
    ShapesImpl* owner;
    std::unique_ptr<GroupItemsImpl> members;
    qint64 slideId;
    bool notes;
    QString name;
    int id;
    TextFrameImpl text;
    TableImpl table;
};

pugi::xml_node cellOrBody(ShapeImpl* s, int row, int column)
{
    pugi::xml_node n = s->node();
    pugi::xml_node body = row ? Deck::tableCellBody(n, row, column) : Deck::textBody(n);
    if (!body)
        Raise(ErrNo::HostUnexpected, QStringLiteral("This shape does not have a text frame."));
    return body;
}

QStringList TextFrameImpl::paragraphs() const { return Deck::paragraphs(cellOrBody(s, row, column)); }

void TextFrameImpl::SetText(const QString& text)
{
    cellOrBody(s, row, column);
    Op o = s->op(Op::SetText);
    o.row = row;
    o.column = column;
    o.value = text;
    s->h->perform(o);
}

Font TextFrameImpl::GetFont() const
{
    return s->h->deck().font(s->part(), s->node(), cellOrBody(s, row, column));
}

void TextFrameImpl::SetFont(const QString& name, double size, long color)
{
    // The host's own limits for a font size, in points.
    if (!(size >= 1 && size <= 4000))
        Raise(ErrNo::ItemNotFound, QStringLiteral("Font.Size : The specified value is out of range."));
    if (name.trimmed().isEmpty())
        Raise(ErrNo::ItemNotFound, QStringLiteral("Font.Name : The specified value is out of range."));
    cellOrBody(s, row, column);
    Op o = s->op(Op::SetFont);
    o.row = row;
    o.column = column;
    o.name = name;
    o.geometry[0] = size;
    o.number = int(color & 0xFFFFFF);
    s->h->perform(o);
}

int TextFrameImpl::Alignment() const { return Deck::alignment(cellOrBody(s, row, column)); }

bool TextFrameImpl::ParagraphsNumbered() const
{
    return s->h->deck().numbered(s->part(), s->node(), cellOrBody(s, row, column));
}

void TextFrameImpl::ReplaceText(int start, int length, const QString& text)
{
    cellOrBody(s, row, column);
    Op o = s->op(Op::ReplaceText);
    o.row = row;
    o.column = column;
    o.number = start;
    o.count = length;
    o.value = text;
    s->h->perform(o);
}

int TableImpl::RowCount() const
{
    int n = 0;
    for (pugi::xml_node tr : Deck::table(s->node()).children())
        n += LocalName(tr) == "tr";
    return n;
}

int TableImpl::ColumnCount() const
{
    int n = 0;
    for (pugi::xml_node c : Child(Deck::table(s->node()), "tblGrid").children())
        n += LocalName(c) == "gridCol";
    return n;
}

TextFrame* TableImpl::Cell(int row, int column)
{
    if (row < 1 || row > RowCount())
        outOfRange("Table.Cell", row, RowCount());
    if (column < 1 || column > ColumnCount())
        outOfRange("Table.Cell", column, ColumnCount());
    auto& cell = cells[{row, column}];
    if (!cell)
        cell = std::make_unique<TextFrameImpl>(s, row, column);
    return cell.get();
}

void TableImpl::changeRow(Op::Kind kind, int row)
{
    if (row < 1 || row > RowCount())
        outOfRange("Rows.Item", row, RowCount());
    Op o = s->op(kind);
    o.row = row;
    s->h->perform(o);
}

int TableImpl::AddRowCopy(int row)
{
    changeRow(Op::AddRowCopy, row);
    return row + 1;
}

void TableImpl::DeleteRow(int row) { changeRow(Op::DeleteRow, row); }

class ShapesImpl : public Shapes {
public:
    ShapesImpl(DeckHost* host, qint64 slideId, bool notes) : h(host), slideId(slideId), notes(notes) {}

    QString part() const { return notes ? h->deck().notesPart(slideId, true) : h->deck().slidePart(slideId); }
    Shape* wrap(pugi::xml_node n) { return wrap(Deck::shapeName(n), Deck::shapeId(n)); }
    Shape* wrap(const QString& name, int id)
    {
        // Callers keep these objects, so none is ever replaced.
        auto& slot = cache[{id, name}];
        // A renamed shape keeps its object but not its key: a new shape that reuses the
        // deleted one's id and first name must not be handed the renamed object.
        if (slot && (slot->name != name || slot->id != id))
            retired.push_back(std::move(slot));
        if (!slot)
            slot = std::make_unique<ShapeImpl>(h, this, slideId, notes, name, id);
        return slot.get();
    }
    int Count() const override { return int(h->deck().shapes(part()).size()); }
    Shape* Item(int index) override
    {
        const auto all = h->deck().shapes(part());
        if (index < 1 || index > all.size())
            outOfRange("Shapes.Item", index, int(all.size()));
        return wrap(all[index - 1]);
    }
    Shape* Item(const QString& name) override
    {
        pugi::xml_node n = h->deck().findShape(part(), name);
        if (!n)
            Raise(ErrNo::ItemNotFound,
                  QStringLiteral("Item '%1' not found in the Shapes collection.").arg(name));
        return wrap(n);
    }
    Op addOp(Op::Kind kind, const QString& prefix, double l, double t, double w, double hgt)
    {
        Op o;
        o.kind = kind;
        o.slideId = slideId;
        o.notes = notes;
        o.geometry[0] = l;
        o.geometry[1] = t;
        o.geometry[2] = w;
        o.geometry[3] = hgt;
        // The host's own naming: the kind and one less than the new id.
        int next = 1;
        for (pugi::xml_node n : h->deck().shapes(part()))
            next = qMax(next, Deck::shapeId(n) + 1);
        o.name = QStringLiteral("%1 %2").arg(prefix).arg(next - 1);
        return o;
    }
    Shape* AddPicture(const QString& file, int, int, double left, double top, double width,
                      double height) override
    {
        QFile f(file);
        if (!f.open(QIODevice::ReadOnly))
            Raise(ErrNo::FileNotFound, QStringLiteral("Shapes.AddPicture : The specified file wasn't found (%1).").arg(file));
        Op o = addOp(Op::AddPicture, "Picture", left, top, width, height);
        o.data = f.readAll();
        o.value = QFileInfo(file).suffix().toLower();
        o.names << QFileInfo(file).fileName();
        const int id = h->perform(o);
        return wrap(o.name, id);
    }
    Shape* AddShape(int type, double left, double top, double width, double height) override
    {
        Op o = addOp(Op::AddShape, type == AutoShape::Oval ? "Oval" : "Rectangle", left, top, width, height);
        o.number = type;
        const int id = h->perform(o);
        return wrap(o.name, id);
    }
    Shape* AddTextbox(double left, double top, double width, double height) override
    {
        Op o = addOp(Op::AddTextbox, "TextBox", left, top, width, height);
        const int id = h->perform(o);
        return wrap(o.name, id);
    }
    Shape* AddTable(int rows, int columns, double left, double top, double width, double height) override
    {
        // The host's own limits for a new table.
        if (rows < 1 || rows > 75 || columns < 1 || columns > 75)
            Raise(ErrNo::ItemNotFound, QStringLiteral("Shapes.AddTable : The specified value is out of range."));
        Op o = addOp(Op::AddTable, "Table", left, top, width, height);
        o.row = rows;
        o.column = columns;
        const int id = h->perform(o);
        return wrap(o.name, id);
    }
    Shape* Group(const QStringList& names) override
    {
        Op o = addOp(Op::Group, "Group", 0, 0, 0, 0);
        o.names = names;
        const int id = h->perform(o);
        return wrap(o.name, id);
    }
    Shape* Paste() override
    {
        const Clip clip = h->clipboard();
        Op o = addOp(Op::Paste, "Pasted", 0, 0, 0, 0);
        // The pasted shape keeps its name, as the host's paste does.
        pugi::xml_document doc;
        if (doc.load_buffer(clip.xml.constData(), size_t(clip.xml.size()), XmlParseOptions()))
            o.name = Deck::shapeName(doc.document_element().first_child());
        const int id = h->perform(o, &clip);
        return wrap(o.name, id);
    }

    DeckHost* h;
    qint64 slideId;
    bool notes;
    std::map<std::pair<int, QString>, std::unique_ptr<ShapeImpl>> cache;
    std::vector<std::unique_ptr<ShapeImpl>> retired; // callers may still hold them
};

class GroupItemsImpl : public GroupShapes {
public:
    explicit GroupItemsImpl(ShapeImpl* group) : g(group) {}
    int Count() const override { return int(Deck::groupMembers(g->node()).size()); }
    Shape* Item(int index) override
    {
        const auto all = Deck::groupMembers(g->node());
        if (index < 1 || index > all.size())
            outOfRange("GroupItems.Item", index, int(all.size()));
        return g->owner->wrap(all[index - 1]);
    }
    Shape* Item(const QString& name) override
    {
        for (pugi::xml_node n : Deck::groupMembers(g->node()))
            if (Deck::shapeName(n) == name)
                return g->owner->wrap(n);
        Raise(ErrNo::ItemNotFound, QStringLiteral("Item '%1' not found in the GroupItems collection.").arg(name));
    }

private:
    ShapeImpl* g;
};

ShapeImpl::~ShapeImpl() = default;

GroupShapes* ShapeImpl::GroupItems()
{
    if (Kind() != ShapeKind::Group)
        Raise(ErrNo::HostUnexpected, QStringLiteral("GroupItems : This member can only be accessed for a group."));
    if (!members)
        members = std::make_unique<GroupItemsImpl>(this);
    return members.get();
}

class SlideImpl : public Slide {
public:
    SlideImpl(DeckHost* host, qint64 id)
        : h(host), id(id), shapes(host, id, false), notes(host, id, true), tags(host, id) {}
    Shapes* GetShapes() override { check(); return &shapes; }
    Tags* GetTags() override { check(); return &tags; }
    Shapes* NotesPage() override { check(); return &notes; }
    int SlideIndex() const override { check(); return h->deck().slideIndexOf(id); }
    long SlideID() const override { return long(id); }
    QString Name() const override { check(); return h->deck().slideName(id); }
    int MainSequenceCount() const override { check(); return h->deck().mainSequenceCount(id); }
    int InteractiveSequencesCount() const override { check(); return h->deck().interactiveSequenceCount(id); }
    void check() const { h->deck().slidePart(id); }

    DeckHost* h;
    qint64 id;
    ShapesImpl shapes;
    ShapesImpl notes;
    TagsImpl tags;
};

class SlidesImpl : public Slides {
public:
    explicit SlidesImpl(DeckHost* host) : h(host) {}
    int Count() const override { return h->deck().slideCount(); }
    Slide* Item(int index) override
    {
        if (index < 1 || index > Count())
            outOfRange("Slides.Item", index, Count());
        return byId(h->deck().slideIdAt(index));
    }
    Slide* FindBySlideID(long id) override
    {
        if (!h->deck().slideIndexOf(id))
            Raise(ErrNo::ItemNotFound, QStringLiteral("Slides.FindBySlideID : Item not found. (%1)").arg(id));
        return byId(id);
    }
    Slide* byId(qint64 id)
    {
        auto& slot = cache[id];
        if (!slot)
            slot = std::make_unique<SlideImpl>(h, id);
        return slot.get();
    }
    DeckHost* h;
    std::map<qint64, std::unique_ptr<SlideImpl>> cache;
};

class ViewImpl : public View {
public:
    ViewImpl(DeckHost* host, SlidesImpl* slides, bool show) : h(host), slides(slides), show(show) {}
    Slide* GetSlide() override { return slides->Item(current()); }
    int current() const
    {
        int& at = show ? h->config().showSlide : docSlide;
        at = qBound(1, at, qMax(1, h->deck().slideCount()));
        return at;
    }
    void GotoSlide(int index, bool) override
    {
        if (index < 1 || index > slides->Count())
            outOfRange("View.GotoSlide", index, slides->Count());
        (show ? h->config().showSlide : docSlide) = index;
    }
    // Without a show program there are no build steps to go through: Next moves on
    // to the next slide and stays on the last.
    void Next() override
    {
        if (current() < slides->Count())
            GotoSlide(current() + 1, true);
    }
    int PointerType() const override { return pointer; }
    void SetPointerType(int type) override { pointer = type; }
    int ViewType() const override { return show ? 1 : 9; } // show view, normal view
    int GetClickCount() const override { return 0; }
    void GotoClick(int) override {}

    DeckHost* h;
    SlidesImpl* slides;
    bool show;
    mutable int docSlide = 1;
    int pointer = Pointer::AutoArrow;
};

class ShowWindowImpl : public SlideShowWindow {
public:
    ShowWindowImpl(DeckHost* host, SlidesImpl* slides) : h(host), view(host, slides, true) {}
    View* GetView() override { return &view; }
    QRect Rect() const override
    {
        const HostConfig& c = h->config();
        if (c.showWindowRect.isValid())
            return c.showWindowRect;
        return c.primaryScreenRect ? c.primaryScreenRect() : QRect(0, 0, 1920, 1080);
    }
    DeckHost* h;
    ViewImpl view;
};

class PresentationImpl;

class DocumentWindowImpl : public DocumentWindow {
public:
    DocumentWindowImpl(DeckHost* host, Presentation* pres, SlidesImpl* slides)
        : h(host), pres(pres), view(host, slides, false) {}
    Presentation* GetPresentation() override { return pres; }
    View* GetView() override { return &view; }
    QString Caption() const override { return pres->Name(); }
    DeckHost* h;
    Presentation* pres;
    ViewImpl view;
};

class PresentationImpl : public Presentation {
public:
    explicit PresentationImpl(DeckHost* host) : h(host), slides(host), tags(host, 0), show(host, &slides) {}
    Slides* GetSlides() override { return &slides; }
    Tags* GetTags() override { return &tags; }
    PageSetup GetPageSetup() const override { return {h->deck().slideWidth(), h->deck().slideHeight()}; }
    long ThemeColorScheme(int index) const override { return h->deck().themeColor(index); }
    bool ShowWithAnimation() const override { return withAnimation; }
    void SetShowWithAnimation(bool on) override { withAnimation = on; }
    void RunSlideShow() override
    {
        h->config().showRunning = true;
        h->config().showSlide = 1;
    }
    SlideShowWindow* GetSlideShowWindow() override
    {
        if (!h->config().showRunning)
            Raise(ErrNo::HostUnexpected, QStringLiteral("Presentation.SlideShowWindow : Invalid request.  There is no currently active slide show."));
        return &show;
    }
    QString Name() const override
    {
        return h->FilePath().isEmpty() ? QStringLiteral("Presentation1") : QFileInfo(h->FilePath()).fileName();
    }
    QString Path() const override
    {
        return h->FilePath().isEmpty() ? QString() : QFileInfo(h->FilePath()).absolutePath();
    }
    QString FullName() const override { return h->FilePath().isEmpty() ? Name() : QFileInfo(h->FilePath()).absoluteFilePath(); }
    void Save() override { h->SavePresentation(); }

    DeckHost* h;
    SlidesImpl slides;
    TagsImpl tags;
    ShowWindowImpl show;
    bool withAnimation = true;
};

struct DeckHost::Impl {
    explicit Impl(DeckHost* h) : presentation(h), window(h, &presentation, &presentation.slides) {}
    PresentationImpl presentation;
    DocumentWindowImpl window;
};

DeckHost::DeckHost(Deck deck, HostConfig config)
    : deck_(std::move(deck)), config_(std::move(config)), d(std::make_unique<Impl>(this))
{
}

DeckHost::~DeckHost() = default;

Presentation* DeckHost::ActivePresentation()
{
    if (!open_)
        Raise(ErrNo::HostUnexpected, QStringLiteral("Application.ActivePresentation : Invalid request.  There is no active presentation."));
    return &d->presentation;
}

int DeckHost::PresentationsCount() const { return open_ ? 1 : 0; }

Presentation* DeckHost::Presentations(const QString& name)
{
    if (!open_ || d->presentation.Name().compare(name, Qt::CaseInsensitive) != 0)
        Raise(ErrNo::ItemNotFound, QStringLiteral("Presentations.Item : Item %1 not found in the Presentations collection.").arg(name));
    return &d->presentation;
}
int DeckHost::SlideShowWindowsCount() const { return open_ && config_.showRunning ? 1 : 0; }

SlideShowWindow* DeckHost::SlideShowWindows(int index)
{
    if (index != 1 || !SlideShowWindowsCount())
        outOfRange("SlideShowWindows.Item", index, SlideShowWindowsCount());
    return &d->presentation.show;
}

int DeckHost::WindowsCount() const { return open_ ? 1 : 0; }

DocumentWindow* DeckHost::Windows(int index)
{
    if (index != 1 || !open_)
        outOfRange("Windows.Item", index, WindowsCount());
    return &d->window;
}

DocumentWindow* DeckHost::ActiveWindow() { return Windows(1); }

QString DeckHost::AddInPath(const QString&) const
{
    return config_.addInPath.isEmpty() ? QCoreApplication::applicationDirPath() : config_.addInPath;
}

bool DeckHost::CommandBarItemChecked(const QString& path) const
{
    return config_.checkedCommandBarItems.contains(path, Qt::CaseInsensitive);
}

void DeckHost::Run(const QString& macro, const QString& argument)
{
    log(QStringLiteral("Run macro %1").arg(argument.isEmpty() ? macro : macro + " " + argument));
    if (config_.runMacro)
        config_.runMacro(macro, argument);
}

int DeckHost::perform(const Op& op, const Clip* clip) { return deck_.apply(op, clip); }

void DeckHost::log(const QString& line) const
{
    if (config_.log)
        config_.log(line);
}

MemoryHost::MemoryHost(int slides, HostConfig config) : DeckHost(Deck::blank(slides), std::move(config)) {}
MemoryHost::MemoryHost(Deck deck, HostConfig config) : DeckHost(std::move(deck), std::move(config)) {}

} // namespace tallix::host
