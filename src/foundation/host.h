#pragma once
// The presentation host as the logic sees it: the objects and members of the
// presentation program's automation model that the vote, chart and question code
// use, by the same names. Two hosts implement it: an in-memory one for tests and
// the `.pptx` one that plays the running presentation.
//
// Objects returned by pointer belong to the host and live as long as it does; a
// shape that has been deleted stays a valid object whose members raise, as the
// original host's did. Failures the original host raised (a shape name that is not
// on the slide, an index out of range) are raised as VbError with the host's number.

#include <QList>
#include <QRect>
#include <QString>
#include <QStringList>
#include <functional>

namespace tallix::host {

// Shape kinds as the deck tool and the tests report them.
enum class ShapeKind { Text, Picture, Group, Table, Graphic, Connector, Other };
QString ShapeKindName(ShapeKind kind);

// `ZOrder` commands, in the host's numbering.
namespace ZOrderCmd {
constexpr int BringToFront = 0;
constexpr int SendToBack = 1;
constexpr int BringForward = 2;
constexpr int SendBackward = 3;
constexpr int BringInFrontOfText = 4;
constexpr int SendBehindText = 5;
} // namespace ZOrderCmd

// `PlaceholderFormat.Type` values the colour and font code compares with.
namespace PlaceholderType {
constexpr int None = 0;
constexpr int Title = 1;
constexpr int Body = 2;
constexpr int CenterTitle = 3;
constexpr int Subtitle = 4;
constexpr int VerticalTitle = 5;
constexpr int VerticalBody = 6;
constexpr int Object = 7;
constexpr int Chart = 8;
constexpr int Bitmap = 9;
constexpr int MediaClip = 10;
constexpr int OrgChart = 11;
constexpr int Table = 12;
constexpr int SlideNumber = 13;
constexpr int Header = 14;
constexpr int Footer = 15;
constexpr int Date = 16;
constexpr int VerticalObject = 17;
constexpr int Picture = 18;
} // namespace PlaceholderType

// `AutoShapeType` values: the rectangle that a placeholder also reports.
namespace AutoShape {
constexpr int Rectangle = 1;
constexpr int RoundedRectangle = 5;
constexpr int Oval = 9;
constexpr int Mixed = -2;
} // namespace AutoShape

// `PointerType` of a show view.
namespace Pointer {
constexpr int Arrow = 1;
constexpr int AlwaysHidden = 3;
constexpr int AutoArrow = 4;
} // namespace Pointer

// Theme colour indexes of `ThemeColorScheme`.
namespace ThemeColor {
constexpr int Dark1 = 1;
constexpr int Light1 = 2;
constexpr int Dark2 = 3;
constexpr int Light2 = 4;
constexpr int Accent1 = 5; // Accent2..Accent6 follow
constexpr int Hyperlink = 11;
constexpr int FollowedHyperlink = 12;
} // namespace ThemeColor

// The `Font` of a text range. Colour is blue-green-red as everywhere in the system.
struct Font {
    QString Name;
    double Size = 18;
    bool Bold = false;
    bool Italic = false;
    bool Underline = false;
    long Color = 0;
};

// What the host stand-in is told from outside: the show, the add-in side, the log.
struct HostConfig {
    bool showRunning = false;
    int showSlide = 1;
    // The show window: this rectangle when configured, else the primary screen's,
    // which the program supplies (the host itself draws nothing).
    QRect showWindowRect;
    std::function<QRect()> primaryScreenRect;
    QString addInPath; // empty: the program's own folder
    QStringList checkedCommandBarItems;
    // Runs a macro by name (the program starts the command configured for it); the
    // argument is empty when the macro is run without one.
    std::function<void(const QString& macro, const QString& argument)> runMacro;
    std::function<void(const QString& line)> log;
};

// A shape that this system placed: its name begins with "tlx" or holds "tallix",
// in any case. Clean-up of shapes the presentation program added never touches one.
bool IsOwnShapeName(const QString& name);

class Tags {
public:
    virtual ~Tags() = default;
    virtual int Count() const = 0;
    virtual QString Name(int index) const = 0;   // 1-based, upper-case as stored
    virtual QString Value(int index) const = 0;  // 1-based
    // A missing tag reads as empty; names are compared without case.
    virtual QString Item(const QString& name) const = 0;
    virtual void Add(const QString& name, const QString& value) = 0;
    virtual void Delete(const QString& name) = 0;
    // Add(name, Item(name) + text), but kept as an append so that a concurrent
    // writer's own appended lines survive.
    virtual void Append(const QString& name, const QString& text) = 0;
};

class TextFrame {
public:
    virtual ~TextFrame() = default;
    // Paragraphs joined by CR, as the host's `TextRange.Text`.
    virtual QString Text() const = 0;
    // CR LF, CR or LF each starts a new paragraph.
    virtual void SetText(const QString& text) = 0;
    virtual int Length() const { return Text().size(); }
    virtual int ParagraphCount() const = 0;
    virtual QString Paragraph(int index) const = 0; // 1-based
    virtual Font GetFont() const = 0;
    virtual int Alignment() const = 0; // 1 left, 2 centre, 3 right, 4 justify
    // `TextRange.Font.Name`, `.Size` and `.Color` (0xBBGGRR) of all its text. A glyph
    // font such as "Wingdings" is set as the symbol font too.
    virtual void SetFont(const QString& name, double size, long color) = 0;
    // The paragraphs show numbers (an automatic numbering) rather than bullets or nothing:
    // true when the first paragraph's effective bullet is an `a:buAutoNum`.
    virtual bool ParagraphsNumbered() const = 0;
    // `TextRange.Characters(start, length).Replace`: `start` counts from 1 in Text() (whose
    // paragraphs are joined by CR), and the text put in may hold CR or CR LF (new paragraphs).
    // The runs before and after the stretch keep their look; the new text takes the look of
    // the run where the stretch begins.
    virtual void ReplaceText(int start, int length, const QString& text) = 0;
};

class Table {
public:
    virtual ~Table() = default;
    virtual int RowCount() const = 0;
    virtual int ColumnCount() const = 0;
    virtual TextFrame* Cell(int row, int column) = 0; // 1-based
    // A copy of row `row` (1-based), look and text, inserted after it; returns the new row's number.
    virtual int AddRowCopy(int row) = 0;
    virtual void DeleteRow(int row) = 0;
};

class GroupShapes;

class Shape {
public:
    virtual ~Shape() = default;
    virtual QString Name() const = 0;
    virtual void SetName(const QString& name) = 0;
    virtual int Id() const = 0;
    virtual ShapeKind Kind() const = 0;
    virtual bool Visible() const = 0;
    virtual void SetVisible(bool visible) = 0;
    // Points; the host rounds on write to its own unit.
    virtual double Left() const = 0;
    virtual double Top() const = 0;
    virtual double Width() const = 0;
    virtual double Height() const = 0;
    virtual void SetLeft(double v) = 0;
    virtual void SetTop(double v) = 0;
    virtual void SetWidth(double v) = 0;
    virtual void SetHeight(double v) = 0;
    virtual bool HasTextFrame() const = 0;
    virtual TextFrame* GetTextFrame() = 0; // raises when the shape has none
    virtual bool HasTable() const = 0;
    virtual Table* GetTable() = 0;         // raises when the shape has none
    virtual void ZOrder(int command) = 0;
    virtual void Delete() = 0;
    virtual void Copy() = 0;
    virtual void Cut() = 0;
    virtual bool LockAspectRatio() const = 0;
    virtual void SetLockAspectRatio(bool lock) = 0;
    // `AnimationSettings.Animate`: the shape has an entry in the slide's timeline.
    virtual bool Animate() const = 0;
    virtual void SetAnimate(bool animate) = 0;
    virtual void SetFillVisible(bool visible) = 0;
    virtual void SetLineVisible(bool visible) = 0;
    virtual int PlaceholderFormatType() const = 0; // PlaceholderType::None when not one
    virtual int AutoShapeType() const = 0;
    // `GroupItems`: the shapes inside a group; raises when the shape is not one.
    virtual GroupShapes* GroupItems() = 0;
};

// The members of a group, back to front. `Shapes.Item(name)` never finds them.
class GroupShapes {
public:
    virtual ~GroupShapes() = default;
    virtual int Count() const = 0;
    virtual Shape* Item(int index) = 0;           // 1-based
    virtual Shape* Item(const QString& name) = 0; // exact name, first match
};

class Shapes {
public:
    virtual ~Shapes() = default;
    virtual int Count() const = 0;
    virtual Shape* Item(int index) = 0;            // 1-based, back to front
    virtual Shape* Item(const QString& name) = 0;  // exact name, first match
    // Left, top, width, height in points; a width or height of 0 or less takes the
    // picture's own size. `link` and `save` are accepted for the host's signature.
    virtual Shape* AddPicture(const QString& file, int link, int saveWithDocument, double left,
                              double top, double width = -1, double height = -1) = 0;
    virtual Shape* AddShape(int autoShapeType, double left, double top, double width,
                            double height) = 0;
    virtual Shape* AddTextbox(double left, double top, double width, double height) = 0;
    // `AddTable(rows, columns, ...)`: a table of empty cells, evenly divided.
    virtual Shape* AddTable(int rows, int columns, double left, double top, double width, double height) = 0;
    // `Range(names).Group`; a single shape makes a group of one, no shape is refused.
    virtual Shape* Group(const QStringList& names) = 0;
    // Pastes what the last `Copy`/`Cut` took, on this slide.
    virtual Shape* Paste() = 0;
};

class Slide {
public:
    virtual ~Slide() = default;
    virtual Shapes* GetShapes() = 0;
    virtual Tags* GetTags() = 0;
    // Shapes of the slide's notes page; the notes page is made when missing.
    virtual Shapes* NotesPage() = 0;
    virtual int SlideIndex() const = 0;
    virtual long SlideID() const = 0;
    virtual QString Name() const = 0;
    virtual int MainSequenceCount() const = 0;
    virtual int InteractiveSequencesCount() const = 0;
};

class Slides {
public:
    virtual ~Slides() = default;
    virtual int Count() const = 0;
    virtual Slide* Item(int index) = 0; // 1-based
    virtual Slide* FindBySlideID(long id) = 0;
};

class View {
public:
    virtual ~View() = default;
    virtual Slide* GetSlide() = 0;
    virtual void GotoSlide(int index, bool resetSlide = true) = 0;
    virtual void Next() = 0;
    virtual int PointerType() const = 0;
    virtual void SetPointerType(int type) = 0;
    virtual int ViewType() const = 0;
    virtual int GetClickCount() const = 0;
    virtual void GotoClick(int index) = 0;
};

class SlideShowWindow {
public:
    virtual ~SlideShowWindow() = default;
    virtual View* GetView() = 0;
    virtual QRect Rect() const = 0; // pixels
};

class Presentation;

class DocumentWindow {
public:
    virtual ~DocumentWindow() = default;
    virtual Presentation* GetPresentation() = 0;
    virtual View* GetView() = 0;
    virtual QString Caption() const = 0;
};

struct PageSetup {
    double SlideWidth = 0;
    double SlideHeight = 0;
};

class Presentation {
public:
    virtual ~Presentation() = default;
    virtual Slides* GetSlides() = 0;
    virtual Tags* GetTags() = 0;
    virtual PageSetup GetPageSetup() const = 0;
    // `SlideMaster.Theme.ThemeColorScheme(index)`, blue-green-red.
    virtual long ThemeColorScheme(int index) const = 0;
    virtual bool ShowWithAnimation() const = 0;
    virtual void SetShowWithAnimation(bool on) = 0;
    // `SlideShowSettings.Run`.
    virtual void RunSlideShow() = 0;
    virtual SlideShowWindow* GetSlideShowWindow() = 0; // raises when no show runs
    virtual QString Name() const = 0;
    virtual QString Path() const = 0; // folder
    virtual QString FullName() const = 0;
    virtual void Save() = 0;
};

class Application {
public:
    virtual ~Application() = default;
    virtual QString Version() const = 0;
    virtual Presentation* ActivePresentation() = 0; // raises when none is open
    virtual int PresentationsCount() const = 0;
    virtual Presentation* Presentations(const QString& name) = 0; // by `Name`, case ignored
    virtual int SlideShowWindowsCount() const = 0;
    virtual SlideShowWindow* SlideShowWindows(int index) = 0; // 1-based
    virtual int WindowsCount() const = 0;
    virtual DocumentWindow* Windows(int index) = 0; // 1-based
    virtual DocumentWindow* ActiveWindow() = 0;
    // `AddIns(name).Path`.
    virtual QString AddInPath(const QString& name) const = 0;
    // `CommandBars(bar).Controls(...)...State`, the path joined by "|".
    virtual bool CommandBarItemChecked(const QString& path) const = 0;
    // Runs a macro of the add-in by name; never waits for it.
    virtual void Run(const QString& macro, const QString& argument = QString()) = 0;
};

} // namespace tallix::host
