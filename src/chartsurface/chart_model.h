#pragma once
// The chart surface's model: series, points, marks, axes, panel, paging, legend, header and
// tools, under the operation names the chart code uses. It knows nothing of votes. Property
// groups are plain structs with public fields, so chart code reads like a property sheet:
//     chart.SERIES(0).Marks.Style = 3;
// Operations that can fail (bad index, wrong series class) raise VbError as the original
// control did, so the chart code's error handling sees the same failures.

#include <QColor>
#include <QImage>
#include <QPoint>
#include <QRect>
#include <QString>
#include <QStringList>

#include <functional>
#include <memory>
#include <vector>

namespace tallix {

// Colours are 32-bit values in blue-green-red order.
using OleColor = quint32;
constexpr OleColor clNone = 536870911; // no colour: transparent, or "use the default"
QColor ToQColor(OleColor c);
OleColor FromQColor(const QColor& c);
inline constexpr OleColor Rgb(int r, int g, int b) { return OleColor(r) | (OleColor(g) << 8) | (OleColor(b) << 16); }

// An int property whose assignment also switches it from automatic to custom, as setting a
// radius or a position on the original control did. Reading gives the value last drawn
// while it is automatic.
struct TCustomInt {
    int value = 0;
    bool custom = false;
    TCustomInt& operator=(int v)
    {
        value = v;
        custom = true;
        return *this;
    }
    operator int() const { return value; }
    void SetAutomatic() { custom = false; }
};

struct TShadow {
    bool Visible = false;
    OleColor Color = Rgb(128, 128, 128);
    int HorizSize = 0;
    int VertSize = 0;
    int Transparency = 0; // percent
};

struct TOutline {
    bool Visible = false;
    int Width = 1;
    OleColor Color = Rgb(0, 0, 0);
};

struct TFont {
    QString Name = QStringLiteral("DejaVu Sans");
    int Size = 10; // points
    bool Bold = false;
    bool Italic = false;
    bool Underline = false;
    bool StrikeThrough = false;
    OleColor Color = Rgb(0, 0, 0);
    TShadow Shadow;
    TOutline Outline;
};

struct TPen {
    bool Visible = true;
    OleColor Color = Rgb(0, 0, 0);
    int Width = 1;
};

// Brush style codes: 0 solid, 1 clear, 2 horizontal, 3 vertical, 4 forward diagonal,
// 5 backward diagonal, 6 cross, 7 diagonal cross.
struct TBrush {
    int Style = 0;
};

// Direction: 0 top to bottom, 1 bottom to top, 2 left to right, 3 right to left.
struct TGradient {
    bool Visible = false;
    OleColor StartColor = Rgb(255, 255, 255);
    OleColor EndColor = Rgb(0, 0, 0);
    int Direction = 0;
};

struct TArrow {
    bool Visible = true;
    OleColor Color = Rgb(128, 128, 128);
};

// Where a mark was drawn, in pixels of the drawn chart; Custom keeps LeftTop as set.
struct TMarkPosition {
    QPoint LeftTop;
    int Width = 0;
    int Height = 0;
    bool Custom = false;
};

class TSeries;

class TMarkPositions {
public:
    explicit TMarkPositions(TSeries* owner) : owner_(owner) {}
    TMarkPosition& Position(int index);
    int Count() const { return int(list_.size()); }
    void Clear() { list_.clear(); }

private:
    friend class TSeries;
    TSeries* owner_;
    std::vector<TMarkPosition> list_;
};

// Style codes: 0 value, 1 percent, 2 label, 3 label and percent, 4 label and value.
struct TMarks {
    explicit TMarks(TSeries* owner) : Positions(owner) {}
    bool Visible = true;
    int Style = 0;
    bool Transparent = false;
    bool MultiLine = false;
    int ArrowLength = 8;
    TArrow Arrow;
    TFont Font;
    OleColor BackColor = Rgb(255, 255, 255);
    TMarkPositions Positions;
};

// Order codes: 0 none, 1 ascending, 2 descending.
class TValueList {
public:
    TValueList(TSeries* owner, bool isX) : owner_(owner), isX_(isX) {}
    int Order = 0;
    void Sort();
    void FillSequence();
    double Value(int index) const;
    int Count() const;

private:
    TSeries* owner_;
    bool isX_;
};

struct TChartPoint {
    double X = 0;
    double Y = 0;
    QString Label;
    OleColor Color = clNone;
    bool IsNull = false;
};

enum SeriesClass { scBar = 1, scHorizBar = 2, scPie = 5, scDonut = 25, scWordCloud = 40 };

// One series. The class-specific views asBar()/asHorizBar()/asPie()/asDonut()/asWordCloud()
// are this same object, checked against the class, so asking a pie for its bar view fails as
// it should.
class TSeries {
public:
    explicit TSeries(int code);
    TSeries(const TSeries&) = delete;
    TSeries& operator=(const TSeries&) = delete;

    int SeriesClassCode() const { return code_; }
    bool IsBarKind() const { return code_ == scBar || code_ == scHorizBar; }
    bool IsPieKind() const { return code_ == scPie || code_ == scDonut; }
    bool IsHorizontal() const { return code_ == scHorizBar; }
    bool IsWordCloud() const { return code_ == scWordCloud; }

    TSeries& asBar();
    TSeries& asHorizBar();
    TSeries& asPie();
    TSeries& asDonut();
    TSeries& asWordCloud();

    // Points.
    int Add(double value, const QString& label = {}, OleColor colour = clNone);
    int AddNull();
    void Delete(int index);
    void Clear();
    int Count() const { return int(points_.size()); }
    double& PointValue(int index);
    QString& PointLabel(int index);
    OleColor& PointColor(int index);
    bool IsNull(int index) const;
    void SortByLabels(int order);
    const std::vector<TChartPoint>& Points() const { return points_; }
    // The value list that holds the values (X of a horizontal bar, Y of the others).
    TValueList& MandatoryValues() { return IsHorizontal() ? XValues : YValues; }

    // Pixel position of a point in the last drawn chart: bars give the bar's left edge and its
    // value end (vertical) or value end and top edge (horizontal); pies the slice's rim middle;
    // a word cloud the centre of the word.
    int CalcXPos(int index) const;
    int CalcYPos(int index) const;
    // Index of the point drawn under (x, y) in the last drawn chart, or -1.
    int Clicked(int x, int y) const;

    // Series state.
    bool Active = true;
    OleColor Color = clNone; // clNone: the chart's palette colour for this series
    bool ColorEachPoint = false;
    QString Title;
    QString ValueFormat = QStringLiteral("#,##0.###");
    QString PercentFormat = QStringLiteral("##0.## %");

    TValueList XValues;
    TValueList YValues;
    TMarks Marks;

    // Bars.
    TPen BarPen;
    TBrush BarBrush;
    int BarStyle = 0; // 0 rectangle, 1 pyramid, 3 cylinder, 6 gradient rectangle
    bool AutoBarSize = false;
    bool AutoMarkPosition = true;
    int BarWidth = 0;  // pixels, used when AutoBarSize is off and it is positive
    int BarHeight = 0; // same for horizontal bars
    int BarWidthPercent = 70;
    int DepthPercent = 100;
    int MultiBar = 1; // 0 none (overlaid), 1 side by side
    TGradient Gradient;
    TShadow Shadow;

    // Pies and donuts.
    TPen PiePen{true, Rgb(255, 255, 255), 1};
    bool Circled = false;
    TCustomInt XRadius;
    TCustomInt YRadius;
    int DonutPercent = 50;
    int RotationAngle = 0; // degrees clockwise from twelve o'clock

    // Word clouds: a point's value is its word's count, its label the word. The smallest
    // count is drawn at WordFontMin points, the largest at WordFontMax, linear between; a
    // point without a colour of its own takes one between WordColorMin and WordColorMax the
    // same way. The face (and bold, italic) is Marks.Font's; Marks themselves are not drawn.
    int WordFontMin = 12;
    int WordFontMax = 44;
    OleColor WordColorMin = Rgb(122, 160, 204);
    OleColor WordColorMax = Rgb(23, 55, 110);

    // Filled by each draw; read through CalcXPos, CalcYPos and Clicked.
    struct Drawn {
        QPoint pos;   // CalcXPos/CalcYPos
        QRect hit;    // bar rectangle, the slice's bounding box, or the word's ink box
        bool valid = false;
    };
    std::vector<Drawn> drawn_;

private:
    friend class TValueList;
    friend class TMarkPositions;
    void checkIndex(int index) const;
    TSeries& view(int code, const char* name);

    int code_;
    std::vector<TChartPoint> points_;
};

struct TAspect {
    bool View3D = true;
    bool Orthogonal = true;
    int Elevation = 315; // pies: 360 looks straight on, 270 edge-on
    int Chart3DPercent = 15;
};

struct TPanel {
    double MarginTop = 3;
    double MarginBottom = 3;
    double MarginLeft = 3;
    double MarginRight = 3;
    int MarginUnits = 0; // 0 percent of the chart, 1 pixels
    OleColor Color = Rgb(255, 255, 255); // clNone: transparent
    int BackImageMode = 1; // 0 top left, 1 stretch, 2 tile, 3 centre
    // Raises VbError when the picture cannot be read.
    void BackImageLoad(const QString& file);
    void BackImageClear() { backImage = QImage(); }
    QImage backImage;
};

struct TWall {
    bool Visible = true;
    OleColor Color = Rgb(246, 247, 249);
};
struct TWalls {
    TWall Back;
    TWall Left{true, Rgb(238, 240, 243)};
    TWall Bottom{true, Rgb(232, 234, 238)};
};

struct TSwitch {
    bool Enable = true;
};
struct TScroll {
    int Enable = 0; // 0 none; other values only stored
};

class TChartModel;

class TPage {
public:
    explicit TPage(TChartModel* owner) : owner_(owner) {}
    int MaxPointsPerPage = 0; // 0: one page
    bool ScaleLastPage = true;
    int Current = 1;
    int Count() const;
    void Next();
    void Previous();

private:
    TChartModel* owner_;
};

struct TAxisLabelItem {
    double Value = 0;
    QString Text;
    TFont Font;
};

class TAxisLabels {
public:
    bool Visible = true;
    TFont Font;
    int Separation = 10; // percent of a label's size kept free between labels
    int Size = 0;        // pixels reserved for the labels; 0 measures them
    int Add(double value, const QString& text);
    void Clear() { items_.clear(); }
    int Count() const { return int(items_.size()); }
    TAxisLabelItem& Item(int index);
    const std::vector<TAxisLabelItem>& Items() const { return items_; }

private:
    std::vector<TAxisLabelItem> items_;
};

struct TAxisTitle {
    QString Caption;
    int Angle = 0; // 0 horizontal; 90 and 270 vertical
    bool Visible = true;
    TFont Font;
};

// Automatic is the master switch: true computes both bounds. With Automatic false, a bound
// is computed only if its own AutomaticMinimum/AutomaticMaximum is true, else fixed.
struct TAxis {
    bool Automatic = true;
    bool AutomaticMinimum = false;
    bool AutomaticMaximum = false;
    double Minimum = 0;
    double Maximum = 0;
    double Increment = 0; // 0: a readable step is chosen
    bool Inverted = false;
    bool Visible = true;
    int MinimumOffset = 0; // pixels kept free inside the axis ends
    int MaximumOffset = 0;
    double PositionPercent = 0;
    double ZPosition = 0;
    bool GridVisible = true;
    OleColor GridColor = Rgb(225, 228, 232);
    OleColor AxisColor = Rgb(150, 155, 162);
    TAxisLabels Labels;
    TAxisTitle Title;
    // Bounds used by the last draw.
    double DrawnMinimum() const { return drawnMin_; }
    double DrawnMaximum() const { return drawnMax_; }
    double drawnMin_ = 0, drawnMax_ = 0; // written by the renderer
};

struct TAxes {
    TAxis Bottom;
    TAxis Left;
};

struct TLegendSymbol {
    bool Visible = true;
    bool Squared = true;
    bool DefaultPen = true;
};

// Alignment: 0 left, 1 right, 2 top, 3 bottom.
struct TLegend {
    bool Visible = false;
    int Alignment = 1;
    bool Transparent = false;
    TFont Font;
    TLegendSymbol Symbol;
    bool FrameVisible = true;
};

struct TFrame {
    bool Visible = false;
    OleColor Color = Rgb(160, 160, 160);
};

struct THeader {
    bool Visible = true;
    QStringList Text;
    TFont Font; // 14 points, bold
    int Alignment = 2; // 0 left, 1 right, 2 centre
    TFrame Frame;
    TShadow Shadow;
    bool Transparent = true;
};

struct TShapeBounds {
    int Left = 0, Top = 0, Right = 0, Bottom = 0;
};

struct TAnnotationShape {
    TCustomInt Left; // pixels; assigning places the shape there
    TCustomInt Top;
    TFont Font;
    OleColor Color = Rgb(255, 255, 255);
    TShadow Shadow;
    bool Transparent = false;
    TFrame Frame{true, Rgb(160, 160, 160)};
};

// Position: 0 left top, 1 left bottom, 2 right top, 3 right bottom.
struct TAnnotationTool {
    QString Text;
    int Position = 0;
    TAnnotationShape Shape;
    TShapeBounds ShapeBounds; // where the text box was drawn last
};

class TSeriesAnimationTool {
public:
    explicit TSeriesAnimationTool(TChartModel* owner) : owner_(owner) {}
    int Series = -1; // index of the series to grow
    int Steps = 100;
    bool StartAtMin = false; // grow from the series' smallest value instead of the baseline
    int DrawEvery = 0;       // redraw every n-th step; 0 and 1 draw every step
    bool Running() const { return running_; }
    // Grows the series to its values, drawing as it goes; returns when the last step is drawn.
    void Execute();

private:
    TChartModel* owner_;
    bool running_ = false;
};

enum ToolKind { tkAnnotation = 10, tkSeriesAnimation = 14 };

class TTool {
public:
    TTool(int kind, TChartModel* owner) : ToolType(kind), anim_(owner) {}
    const int ToolType;
    bool Active = true;
    TAnnotationTool& asAnnotation();
    TSeriesAnimationTool& asSeriesAnimation();

private:
    TAnnotationTool ann_;
    TSeriesAnimationTool anim_;
};

class TTools {
public:
    explicit TTools(TChartModel* owner) : owner_(owner) {}
    int Add(int kind); // returns the new tool's index
    TTool& Items(int index);
    void Delete(int index);
    void Clear() { tools_.clear(); }
    int Count() const { return int(tools_.size()); }

private:
    TChartModel* owner_;
    std::vector<std::unique_ptr<TTool>> tools_;
};

// The model of one chart. TChart (the widget) adds painting, events and export; the model
// alone is enough to draw into any QPainter.
class TChartModel {
public:
    TChartModel();
    virtual ~TChartModel();
    TChartModel(const TChartModel&) = delete;
    TChartModel& operator=(const TChartModel&) = delete;

    void RemoveAllSeries();
    int AddSeries(int code); // returns the new series' index
    void RemoveSeries(int index);
    int SeriesCount() const { return int(series_.size()); }
    TSeries& SERIES(int index);
    const TSeries& SERIES(int index) const;

    TAspect Aspect;
    TPanel Panel;
    TFrame Frame; // a line round the whole chart
    TWalls Walls;
    TSwitch Zoom;
    TScroll Scroll;
    TPage Page{this};
    TAxes Axis;
    TLegend Legend;
    THeader Header;
    TTools Tools{this};

    // Draws the current state now (synchronously) and raises the after-draw event.
    virtual void Repaint();
    // Asked once per legend entry while drawing; may replace the text.
    std::function<void(int legendIndex, QString& text)> legendTextHook;

    // Size at which Repaint lays out a chart that has no window; the widget uses its own.
    virtual QSize drawSize() const { return headlessSize_; }
    void setHeadlessSize(QSize s) { headlessSize_ = s; }
    // The picture of the last headless Repaint.
    const QImage& lastFrame() const { return lastFrame_; }

    // While an animation runs the value axis keeps the bounds of the full values.
    bool freezeValueAxis_ = false;
    double frozenMin_ = 0, frozenMax_ = 0;

protected:
    void renderHeadless();
    virtual void afterDraw() {}

private:
    std::vector<std::unique_ptr<TSeries>> series_;
    QSize headlessSize_{640, 480};
    QImage lastFrame_;
    bool inHeadlessDraw_ = false;
};

// The palette a series or point takes when it has no colour of its own.
OleColor DefaultPaletteColor(int index);

} // namespace tallix
