#include "chartsurface/chart_renderer.h"

#include "foundation/format_float.h"

#include <QFontDatabase>
#include <QFontMetricsF>
#include <QHash>
#include <QLinearGradient>
#include <QLocale>
#include <QPainterPath>

#include <algorithm>
#include <cmath>
#include <limits>
#include <map>
#include <numeric>
#include <optional>

namespace tallix {

namespace {

constexpr double kPi = 3.14159265358979323846;
constexpr double kPxPerPt = 96.0 / 72.0;

bool FamilyInstalled(const QString& family)
{
    static QHash<QString, bool> cache;
    auto it = cache.constFind(family.toLower());
    if (it != cache.constEnd())
        return *it;
    bool found = false;
    for (const QString& f : QFontDatabase::families())
        if (f.compare(family, Qt::CaseInsensitive) == 0) {
            found = true;
            break;
        }
    cache.insert(family.toLower(), found);
    return found;
}

QChar DecimalMark()
{
    const QString d = QLocale().decimalPoint();
    return d.isEmpty() ? QLatin1Char('.') : d.at(0);
}

QChar ThousandsMark()
{
    const QString g = QLocale().groupSeparator();
    return g.isEmpty() ? QLatin1Char(',') : g.at(0);
}

QColor Blend(const QColor& a, const QColor& b, double t)
{
    return QColor::fromRgbF(float(a.redF() + (b.redF() - a.redF()) * t),
                            float(a.greenF() + (b.greenF() - a.greenF()) * t),
                            float(a.blueF() + (b.blueF() - a.blueF()) * t));
}

// Codes 0 and 1 are both solid: a question's settings call 1 a solid fill, and no
// settings value may leave a bar hollow. 2 to 7 are the hatch patterns.
Qt::BrushStyle BrushStyleFor(int code)
{
    switch (code) {
    case 2: return Qt::HorPattern;
    case 3: return Qt::VerPattern;
    case 4: return Qt::FDiagPattern;
    case 5: return Qt::BDiagPattern;
    case 6: return Qt::CrossPattern;
    case 7: return Qt::DiagCrossPattern;
    default: return Qt::SolidPattern;
    }
}

QPen PenFor(const TPen& pen)
{
    if (!pen.Visible || pen.Color == clNone)
        return Qt::NoPen;
    QPen p(ToQColor(pen.Color), std::max(1, pen.Width));
    p.setJoinStyle(Qt::MiterJoin);
    return p;
}

// A block of text, possibly on several lines, drawn in a chart font with its shadow and outline.
struct TextBlock {
    QStringList lines;
    QFont font;
    QSizeF size;
    double lineHeight = 0;
};

TextBlock Measure(const QString& text, const QFont& font)
{
    TextBlock b;
    b.lines = text.split(QLatin1Char('\n'));
    b.font = font;
    QFontMetricsF fm(font);
    b.lineHeight = fm.height();
    double w = 0;
    for (const QString& l : b.lines)
        w = std::max(w, fm.horizontalAdvance(l));
    b.size = QSizeF(w, b.lineHeight * b.lines.size());
    return b;
}

// Draws centred lines inside box (its size from Measure).
void DrawTextBlock(QPainter& p, const TextBlock& b, const QRectF& box, const TFont& tf, Qt::Alignment align = Qt::AlignHCenter)
{
    QFontMetricsF fm(b.font);
    const QColor colour = ToQColor(tf.Color == clNone ? Rgb(0, 0, 0) : tf.Color);
    const bool shadow = tf.Shadow.Visible || tf.Shadow.HorizSize != 0 || tf.Shadow.VertSize != 0;
    double sx = tf.Shadow.HorizSize, sy = tf.Shadow.VertSize;
    if (shadow && sx == 0 && sy == 0)
        sx = sy = 1;
    QColor shadowColour = ToQColor(tf.Shadow.Color == clNone ? Rgb(128, 128, 128) : tf.Shadow.Color);
    if (tf.Shadow.Transparency > 0)
        shadowColour = Blend(shadowColour, Qt::white, std::clamp(tf.Shadow.Transparency, 0, 100) / 100.0);
    p.setFont(b.font);
    for (int i = 0; i < b.lines.size(); ++i) {
        const QString& line = b.lines[i];
        const double w = fm.horizontalAdvance(line);
        double x = box.left();
        if (align & Qt::AlignHCenter)
            x = box.left() + (box.width() - w) / 2;
        else if (align & Qt::AlignRight)
            x = box.right() - w;
        const QPointF base(x, box.top() + i * b.lineHeight + fm.ascent());
        if (shadow) {
            p.setPen(shadowColour);
            p.drawText(base + QPointF(sx, sy), line);
        }
        if (tf.Outline.Visible && tf.Outline.Width > 0) {
            QPainterPath path;
            path.addText(base, b.font, line);
            p.setPen(QPen(ToQColor(tf.Outline.Color), tf.Outline.Width, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
            p.setBrush(colour);
            p.drawPath(path);
            p.setBrush(Qt::NoBrush);
        } else {
            p.setPen(colour);
            p.drawText(base, line);
        }
    }
}

double NiceStep(double raw, bool integral)
{
    if (raw <= 0 || !std::isfinite(raw))
        return 1;
    const double mag = std::pow(10.0, std::floor(std::log10(raw)));
    const double f = raw / mag;
    double step = f <= 1 ? 1 : f <= 2 ? 2 : f <= 2.5 ? 2.5 : f <= 5 ? 5 : 10;
    step *= mag;
    if (integral)
        step = std::max(1.0, std::round(step));
    return step;
}

QString TickText(double v, double step)
{
    int decimals = 0;
    if (step < 1) {
        decimals = std::clamp(int(std::ceil(-std::log10(step) - 1e-9)), 0, 6);
        if (std::fabs(std::round(step * std::pow(10.0, decimals)) - step * std::pow(10.0, decimals)) > 1e-6)
            ++decimals;
    } else if (std::fabs(step - std::round(step)) > 1e-9) {
        decimals = 1;
    }
    QString pic = QStringLiteral("#,##0");
    if (decimals > 0)
        pic += QLatin1Char('.') + QString(decimals, QLatin1Char('0'));
    if (std::fabs(v) < step * 1e-9)
        v = 0;
    return FormatFloat(pic, v, DecimalMark(), ThousandsMark());
}

// A point with no value (a null, or a value that is not a number) is neither drawn nor counted.
bool Drawable(const TSeries& s, const TChartPoint& pt)
{
    return !pt.IsNull && std::isfinite(s.IsHorizontal() ? pt.X : pt.Y) && std::isfinite(s.IsHorizontal() ? pt.Y : pt.X);
}

QColor PointColour(const TSeries& s, int seriesIndex, int i)
{
    const auto& pt = s.Points()[size_t(i)];
    if (pt.Color != clNone)
        return ToQColor(pt.Color);
    if (s.ColorEachPoint)
        return ToQColor(DefaultPaletteColor(i));
    return ToQColor(s.Color != clNone ? s.Color : DefaultPaletteColor(seriesIndex));
}

QString MarkText(const TSeries& s, int i, double sum)
{
    const auto& pt = s.Points()[size_t(i)];
    const double value = s.IsHorizontal() ? pt.X : pt.Y;
    const double pct = sum != 0 ? value / sum * 100.0 : 0.0; // a zero sum shows 0, never a failed division
    const QString pctText = FormatFloat(s.PercentFormat, pct, DecimalMark(), ThousandsMark());
    const QString valText = FormatFloat(s.ValueFormat, value, DecimalMark(), ThousandsMark());
    const QString& label = pt.Label;
    auto join = [&](const QString& second) {
        if (label.isEmpty())
            return second;
        if (s.Marks.MultiLine)
            return label.trimmed() + QLatin1Char('\n') + second;
        return label.endsWith(QLatin1Char(' ')) ? label + second : label + QLatin1Char(' ') + second;
    };
    switch (s.Marks.Style) {
    case 1: return pctText;
    case 2: return label.isEmpty() ? valText : label;
    case 3: return join(pctText);
    case 4: return join(valText);
    default: return valText;
    }
}

double SeriesSum(const TSeries& s)
{
    double sum = 0;
    for (const auto& pt : s.Points())
        if (Drawable(s, pt))
            sum += s.IsHorizontal() ? pt.X : pt.Y;
    return sum;
}

void DrawMarkBox(QPainter& p, const TSeries& s, const TextBlock& b, const QRectF& box)
{
    if (!s.Marks.Transparent) {
        p.setPen(QPen(QColor(170, 170, 170), 1));
        p.setBrush(ToQColor(s.Marks.BackColor == clNone ? Rgb(255, 255, 255) : s.Marks.BackColor));
        p.drawRect(box);
        p.setBrush(Qt::NoBrush);
    }
    DrawTextBlock(p, b, box.adjusted(2, 1, -2, -1), s.Marks.Font);
}

struct Scale {
    double min = 0, max = 1;
    double from = 0, to = 1; // pixels that min and max map to
    double map(double v) const { return max == min ? from : from + (v - min) / (max - min) * (to - from); }
};

// Pixel space a series' marks take beyond the value end, with the mark font.
struct MarkPlan {
    QFont font;
    std::vector<QString> texts;
    std::vector<TextBlock> blocks;
    double maxW = 0, maxH = 0;
};

// Breaks text at blanks into lines no wider than width (a word longer than that stays whole).
QString Wrap(const QString& text, const QFont& font, double width)
{
    QFontMetricsF fm(font);
    QStringList out;
    for (const QString& line : text.split(QLatin1Char('\n'))) {
        QString cur;
        for (const QString& word : line.split(QLatin1Char(' '), Qt::SkipEmptyParts)) {
            const QString next = cur.isEmpty() ? word : cur + QLatin1Char(' ') + word;
            if (!cur.isEmpty() && fm.horizontalAdvance(next) > width) {
                out << cur;
                cur = word;
            } else {
                cur = next;
            }
        }
        out << cur;
    }
    return out.join(QLatin1Char('\n'));
}

MarkPlan PlanMarks(const TSeries& s, double fontScale, double wrapWidth = 0)
{
    MarkPlan m;
    m.font = ChartRenderer::MakeFont(s.Marks.Font, fontScale);
    const double sum = SeriesSum(s);
    for (int i = 0; i < s.Count(); ++i) {
        QString t = Drawable(s, s.Points()[size_t(i)]) ? MarkText(s, i, sum) : QString();
        if (wrapWidth > 0)
            t = Wrap(t, m.font, wrapWidth);
        m.texts.push_back(t);
        TextBlock b = Measure(t, m.font);
        const double pad = s.Marks.Transparent ? 4 : 6;
        m.maxW = std::max(m.maxW, b.size.width() + pad);
        m.maxH = std::max(m.maxH, b.size.height() + 2);
        m.blocks.push_back(std::move(b));
    }
    return m;
}

void StoreMarkPosition(TSeries& s, int i, QRectF& box)
{
    TMarkPosition& pos = s.Marks.Positions.Position(i);
    if (pos.Custom)
        box.moveTopLeft(QPointF(pos.LeftTop));
    pos.LeftTop = box.topLeft().toPoint();
    pos.Width = int(std::lround(box.width()));
    pos.Height = int(std::lround(box.height()));
}

// ---- legend -------------------------------------------------------------------------------

struct LegendEntry {
    QString text;
    QColor colour;
};

std::vector<LegendEntry> LegendEntries(TChartModel& m, const std::vector<int>& active)
{
    std::vector<LegendEntry> out;
    if (active.empty())
        return out;
    const TSeries& first = m.SERIES(active.front());
    if (active.size() == 1 || first.IsPieKind() || first.ColorEachPoint) {
        for (int i = 0; i < first.Count(); ++i) {
            const auto& pt = first.Points()[size_t(i)];
            if (!Drawable(first, pt))
                continue;
            const double v = first.IsHorizontal() ? pt.X : pt.Y;
            QString t = pt.Label.trimmed().isEmpty()
                            ? FormatFloat(first.ValueFormat, v, DecimalMark(), ThousandsMark())
                            : pt.Label.trimmed();
            out.push_back({t, PointColour(first, active.front(), i)});
        }
    } else {
        for (int si : active) {
            const TSeries& s = m.SERIES(si);
            out.push_back({s.Title.isEmpty() ? QStringLiteral("Series %1").arg(si) : s.Title,
                           ToQColor(s.Color != clNone ? s.Color : DefaultPaletteColor(si))});
        }
    }
    for (int i = 0; i < int(out.size()); ++i)
        if (m.legendTextHook)
            m.legendTextHook(i, out[size_t(i)].text);
    return out;
}

// Draws the legend at its side of area and returns what is left of area.
QRectF DrawLegend(TChartModel& m, QPainter& p, QRectF area, const std::vector<int>& active)
{
    if (!m.Legend.Visible)
        return area;
    const auto entries = LegendEntries(m, active);
    if (entries.empty())
        return area;
    const QFont font = ChartRenderer::MakeFont(m.Legend.Font);
    QFontMetricsF fm(font);
    const double lh = fm.height() + 4;
    const double sym = m.Legend.Symbol.Visible ? fm.height() * 0.75 : 0;
    const double gap = sym > 0 ? 6 : 0;
    double textW = 0;
    for (const auto& e : entries)
        textW = std::max(textW, fm.horizontalAdvance(e.text));
    const bool vertical = m.Legend.Alignment == 0 || m.Legend.Alignment == 1;
    QSizeF box;
    const double itemW = sym + gap + textW + 12;
    int perRow = 1;
    if (vertical) {
        box = QSizeF(itemW + 8, lh * entries.size() + 8);
    } else {
        perRow = std::max(1, int((area.width() - 8) / itemW));
        const int rows = (int(entries.size()) + perRow - 1) / perRow;
        box = QSizeF(std::min<double>(area.width(), itemW * std::min<int>(perRow, int(entries.size())) + 8), lh * rows + 8);
    }
    QRectF r;
    switch (m.Legend.Alignment) {
    case 0: r = QRectF(area.left(), area.center().y() - box.height() / 2, box.width(), box.height()); area.setLeft(r.right() + 10); break;
    case 2: r = QRectF(area.center().x() - box.width() / 2, area.top(), box.width(), box.height()); area.setTop(r.bottom() + 8); break;
    case 3: r = QRectF(area.center().x() - box.width() / 2, area.bottom() - box.height(), box.width(), box.height()); area.setBottom(r.top() - 8); break;
    default: r = QRectF(area.right() - box.width(), area.center().y() - box.height() / 2, box.width(), box.height()); area.setRight(r.left() - 10); break;
    }
    if (!m.Legend.Transparent) {
        p.setPen(m.Legend.FrameVisible ? QPen(QColor(200, 200, 200), 1) : QPen(Qt::NoPen));
        p.setBrush(Qt::white);
        p.drawRect(r);
        p.setBrush(Qt::NoBrush);
    }
    for (int i = 0; i < int(entries.size()); ++i) {
        const int row = vertical ? i : i / perRow;
        const int col = vertical ? 0 : i % perRow;
        const double x = r.left() + 4 + col * itemW;
        const double y = r.top() + 4 + row * lh;
        if (sym > 0) {
            const QRectF sr(x + 2, y + (lh - sym) / 2, m.Legend.Symbol.Squared ? sym : sym * 1.6, sym);
            p.setPen(m.Legend.Symbol.DefaultPen ? QPen(entries[size_t(i)].colour.darker(140), 1) : QPen(Qt::NoPen));
            p.setBrush(entries[size_t(i)].colour);
            p.drawRect(sr);
            p.setBrush(Qt::NoBrush);
        }
        TextBlock b = Measure(entries[size_t(i)].text, font);
        DrawTextBlock(p, b, QRectF(x + 2 + sym * (m.Legend.Symbol.Squared ? 1 : 1.6) + gap, y + (lh - b.size.height()) / 2, b.size.width(), b.size.height()),
                      m.Legend.Font, Qt::AlignLeft);
    }
    return area;
}

// ---- annotations ----------------------------------------------------------------------------

void DrawAnnotations(TChartModel& m, QPainter& p, const QRectF& rect)
{
    for (int t = 0; t < m.Tools.Count(); ++t) {
        TTool& tool = m.Tools.Items(t);
        if (tool.ToolType != tkAnnotation || !tool.Active)
            continue;
        TAnnotationTool& a = tool.asAnnotation();
        const QString text = ChartRenderer::MapSymbolText(a.Shape.Font, a.Text);
        const QFont font = ChartRenderer::MakeFont(a.Shape.Font);
        TextBlock b = Measure(text, font);
        const QSizeF size(b.size.width() + 10, b.size.height() + 6);
        QPointF tl;
        switch (a.Position) {
        case 1: tl = QPointF(rect.left() + 10, rect.bottom() - 10 - size.height()); break;
        case 2: tl = QPointF(rect.right() - 10 - size.width(), rect.top() + 10); break;
        case 3: tl = QPointF(rect.right() - 10 - size.width(), rect.bottom() - 10 - size.height()); break;
        default: tl = QPointF(rect.left() + 10, rect.top() + 10); break;
        }
        if (a.Shape.Left.custom)
            tl.setX(a.Shape.Left.value);
        else
            a.Shape.Left.value = int(std::lround(tl.x()));
        if (a.Shape.Top.custom)
            tl.setY(a.Shape.Top.value);
        else
            a.Shape.Top.value = int(std::lround(tl.y()));
        const QRectF box(tl, size);
        if (!a.Shape.Transparent) {
            if (a.Shape.Shadow.Visible) {
                p.setPen(Qt::NoPen);
                p.setBrush(QColor(150, 150, 150));
                p.drawRect(box.translated(3, 3));
            }
            p.setPen(a.Shape.Frame.Visible ? QPen(ToQColor(a.Shape.Frame.Color), 1) : QPen(Qt::NoPen));
            p.setBrush(a.Shape.Color == clNone ? QBrush(Qt::NoBrush) : QBrush(ToQColor(a.Shape.Color)));
            p.drawRect(box);
            p.setBrush(Qt::NoBrush);
        }
        DrawTextBlock(p, b, box.adjusted(5, 3, -5, -3), a.Shape.Font, Qt::AlignLeft);
        a.ShapeBounds = {int(std::lround(box.left())), int(std::lround(box.top())), int(std::lround(box.right())),
                         int(std::lround(box.bottom()))};
    }
}

// ---- header ---------------------------------------------------------------------------------

QRectF DrawHeader(TChartModel& m, QPainter& p, QRectF area)
{
    QStringList lines;
    for (const QString& l : m.Header.Text)
        lines << l;
    while (!lines.isEmpty() && lines.last().trimmed().isEmpty())
        lines.removeLast();
    if (!m.Header.Visible || lines.isEmpty())
        return area;
    const QFont font = ChartRenderer::MakeFont(m.Header.Font);
    TextBlock b = Measure(lines.join(QLatin1Char('\n')), font);
    QRectF box(area.left(), area.top(), area.width(), b.size.height() + 6);
    if (!m.Header.Transparent || m.Header.Frame.Visible) {
        p.setPen(m.Header.Frame.Visible ? QPen(ToQColor(m.Header.Frame.Color), 1) : QPen(Qt::NoPen));
        p.setBrush(m.Header.Transparent ? QBrush(Qt::NoBrush) : QBrush(Qt::white));
        p.drawRect(box);
        p.setBrush(Qt::NoBrush);
    }
    const Qt::Alignment al = m.Header.Alignment == 0 ? Qt::AlignLeft : m.Header.Alignment == 1 ? Qt::AlignRight : Qt::AlignHCenter;
    DrawTextBlock(p, b, box.adjusted(4, 3, -4, -3), m.Header.Font, al);
    area.setTop(box.bottom() + 6);
    return area;
}

// ---- bars -----------------------------------------------------------------------------------

struct AxisBounds {
    double min, max;
};

// Category bounds of the visible page, and whether the axis is taken by paging.
AxisBounds CategoryBounds(TChartModel& m, const std::vector<int>& bars, bool horizontal, const TAxis& cat)
{
    double lo = 0, hi = 0;
    bool any = false;
    int n = 0;
    for (int si : bars) {
        const TSeries& s = m.SERIES(si);
        n = std::max(n, s.Count());
        for (const auto& pt : s.Points()) {
            const double pos = horizontal ? pt.Y : pt.X;
            if (!std::isfinite(pos))
                continue;
            lo = any ? std::min(lo, pos) : pos;
            hi = any ? std::max(hi, pos) : pos;
            any = true;
        }
    }
    const int maxPer = m.Page.MaxPointsPerPage;
    if (maxPer > 0 && n > maxPer) {
        const int pages = m.Page.Count();
        const int cur = std::clamp(m.Page.Current, 1, pages);
        const double first = lo + double(cur - 1) * maxPer;
        double last = first + maxPer - 1;
        if (cur == pages && !m.Page.ScaleLastPage)
            last = hi;
        return {first - 0.5, last + 0.5};
    }
    AxisBounds b{any ? lo - 0.5 : -0.5, any ? hi + 0.5 : 0.5};
    const bool autoMin = cat.Automatic || cat.AutomaticMinimum;
    const bool autoMax = cat.Automatic || cat.AutomaticMaximum;
    if (!autoMin)
        b.min = cat.Minimum;
    if (!autoMax)
        b.max = cat.Maximum;
    if (b.max <= b.min)
        b.max = b.min + 1;
    return b;
}

struct BarGeom {
    QRectF front;     // the bar's front face
    double base, end; // pixels of value 0 and of the value along the value direction
    QPointF depth;    // offset of the back face
};

void FillPoly(QPainter& p, const QPolygonF& poly, const QBrush& brush, const QPen& pen)
{
    p.setPen(pen);
    p.setBrush(brush);
    p.drawPolygon(poly);
}

QBrush FrontBrush(const TSeries& s, const QColor& c, const QRectF& r, bool horizontal)
{
    const Qt::BrushStyle style = BrushStyleFor(s.BarBrush.Style);
    if (style != Qt::SolidPattern)
        return QBrush(c, style);
    if (s.BarStyle == 6 || s.Gradient.Visible) {
        const QColor end = s.Gradient.Visible ? Blend(c, ToQColor(s.Gradient.EndColor), 0.6) : c.lighter(150);
        QLinearGradient g;
        switch (s.Gradient.Direction) {
        case 1: g = QLinearGradient(r.bottomLeft(), r.topLeft()); break;
        case 2: g = QLinearGradient(r.topLeft(), r.topRight()); break;
        case 3: g = QLinearGradient(r.topRight(), r.topLeft()); break;
        default: g = QLinearGradient(r.topLeft(), r.bottomLeft()); break;
        }
        Q_UNUSED(horizontal);
        g.setColorAt(0, end);
        g.setColorAt(1, c);
        return g;
    }
    return c;
}

void DrawBar(QPainter& p, const TSeries& s, const QColor& c, const BarGeom& g, bool horizontal, bool view3d)
{
    const QPen pen = PenFor(s.BarPen);
    const QRectF& r = g.front;
    const QPointF o = g.depth;
    const QBrush top(c.lighter(118));
    const QBrush side(c.darker(128));

    if (s.BarStyle == 1) { // pyramid: base on the zero line, apex at the value
        QPointF b0, b1, apex;
        if (horizontal) {
            b0 = QPointF(g.base, r.top());
            b1 = QPointF(g.base, r.bottom());
            apex = QPointF(g.end, r.center().y()) + o / 2;
            if (view3d)
                FillPoly(p, QPolygonF({b0, b0 + o, apex}), top, pen);
        } else {
            b0 = QPointF(r.left(), g.base);
            b1 = QPointF(r.right(), g.base);
            apex = QPointF(r.center().x(), g.end) + o / 2;
            if (view3d)
                FillPoly(p, QPolygonF({b1, b1 + o, apex}), side, pen);
        }
        FillPoly(p, QPolygonF({b0, b1, apex}), FrontBrush(s, c, r, horizontal), pen);
        return;
    }
    if (s.BarStyle == 3) { // cylinder: a shaded body with elliptic caps
        const QPointF h = view3d ? o / 2 : QPointF(0, 0);
        QLinearGradient shade;
        QPainterPath body;
        QRectF cap;
        if (horizontal) {
            const double ew = std::clamp(view3d ? o.x() : r.height() * 0.2, 4.0, r.height());
            const double y0 = r.top() + h.y(), y1 = r.bottom() + h.y();
            const double b = g.base + h.x(), e = g.end + h.x();
            const QRectF baseCap(b - ew / 2, y0, ew, y1 - y0);
            cap = QRectF(e - ew / 2, y0, ew, y1 - y0);
            body.moveTo(e, y0);
            body.lineTo(b, y0);
            body.arcTo(baseCap, 90, e >= b ? 180 : -180);
            body.lineTo(e, y1);
            body.closeSubpath();
            shade = QLinearGradient(0, y0, 0, y1);
        } else {
            const double eh = std::clamp(view3d ? o.x() : r.width() * 0.2, 4.0, r.width());
            const double x0 = r.left() + h.x(), x1 = r.right() + h.x();
            const double b = g.base + h.y(), e = g.end + h.y();
            const QRectF baseCap(x0, b - eh / 2, x1 - x0, eh);
            cap = QRectF(x0, e - eh / 2, x1 - x0, eh);
            body.moveTo(x0, e);
            body.lineTo(x0, b);
            body.arcTo(baseCap, 180, e <= b ? 180 : -180);
            body.lineTo(x1, e);
            body.closeSubpath();
            shade = QLinearGradient(x0, 0, x1, 0);
        }
        shade.setColorAt(0, c.darker(125));
        shade.setColorAt(0.35, c.lighter(130));
        shade.setColorAt(1, c.darker(145));
        p.setBrush(shade);
        p.setPen(pen);
        p.drawPath(body);
        p.setBrush(QBrush(c.lighter(108)));
        p.drawEllipse(cap);
        return;
    }
    // Rectangle (and gradient rectangle): front face, then the top and side faces in 3D.
    if (view3d && (o.x() > 0.5 || o.y() != 0)) {
        FillPoly(p, QPolygonF({r.topLeft(), r.topRight(), r.topRight() + o, r.topLeft() + o}), top, pen);
        FillPoly(p, QPolygonF({r.topRight(), r.bottomRight(), r.bottomRight() + o, r.topRight() + o}), side, pen);
    }
    p.setPen(pen);
    p.setBrush(FrontBrush(s, c, r, horizontal));
    p.drawRect(r);
}

void DrawBars(TChartModel& m, QPainter& p, QRectF area, const std::vector<int>& bars)
{
    const bool horizontal = m.SERIES(bars.front()).IsHorizontal();
    TAxis& cat = horizontal ? m.Axis.Left : m.Axis.Bottom;
    TAxis& val = horizontal ? m.Axis.Bottom : m.Axis.Left;
    const bool view3d = m.Aspect.View3D;

    // Series in the same slot side by side, or overlaid.
    std::vector<int> drawn;
    for (int si : bars)
        if (m.SERIES(si).IsHorizontal() == horizontal)
            drawn.push_back(si);
    const bool side = m.SERIES(drawn.front()).MultiBar == 1 && drawn.size() > 1;
    const int slotCount = side ? int(drawn.size()) : 1;

    const AxisBounds cb = CategoryBounds(m, drawn, horizontal, cat);

    // Values on view decide the automatic value bounds.
    double vmin = 0, vmax = 0;
    bool integral = true;
    for (int si : drawn)
        for (const auto& pt : m.SERIES(si).Points()) {
            const double pos = horizontal ? pt.Y : pt.X;
            if (!Drawable(m.SERIES(si), pt) || pos < cb.min || pos > cb.max)
                continue;
            const double v = horizontal ? pt.X : pt.Y;
            vmin = std::min(vmin, v);
            vmax = std::max(vmax, v);
            integral = integral && std::fabs(v - std::round(v)) < 1e-9;
        }
    if (vmax == vmin)
        vmax = vmin + (integral ? 5 : 1);

    // Fonts and sizes of what sits around the plot.
    const QFont valFont = ChartRenderer::MakeFont(val.Labels.Font);
    const QFont catFont = ChartRenderer::MakeFont(cat.Labels.Font);
    QFontMetricsF vfm(valFont), cfm(catFont);
    auto titleSpace = [&](const TAxis& ax) {
        if (!ax.Visible || !ax.Title.Visible || ax.Title.Caption.isEmpty())
            return 0.0;
        return QFontMetricsF(ChartRenderer::MakeFont(ax.Title.Font)).height() + 6;
    };
    const double valLabelW = val.Visible && val.Labels.Visible
                                 ? (val.Labels.Size > 0 ? val.Labels.Size
                                                        : std::max(vfm.horizontalAdvance(TickText(vmax * 1.5, integral ? 1 : 0.1)),
                                                                   vfm.horizontalAdvance(TickText(vmin, integral ? 1 : 0.1))) + 8)
                                 : 0;
    double catLabelW = 0;
    if (cat.Visible && cat.Labels.Visible) {
        if (cat.Labels.Size > 0)
            catLabelW = cat.Labels.Size;
        else {
            for (const auto& it : cat.Labels.Items())
                catLabelW = std::max(catLabelW, QFontMetricsF(ChartRenderer::MakeFont(it.Font)).horizontalAdvance(it.Text));
            catLabelW = std::max(catLabelW, cfm.horizontalAdvance(QStringLiteral("000"))) + 8;
        }
    }
    QRectF plot = area;
    if (horizontal) {
        plot.setLeft(plot.left() + catLabelW + titleSpace(cat));
        plot.setBottom(plot.bottom() - (val.Visible && val.Labels.Visible ? vfm.height() + 6 : 0) - titleSpace(val));
        plot.setRight(plot.right() - vfm.horizontalAdvance(TickText(vmax, 1)) / 2);
    } else {
        plot.setLeft(plot.left() + valLabelW + titleSpace(val));
        const double catH = cat.Labels.Size > 0 ? cat.Labels.Size : cfm.height() + 6;
        plot.setBottom(plot.bottom() - (cat.Visible && cat.Labels.Visible ? catH : 0) - titleSpace(cat));
        plot.setTop(plot.top() + vfm.height() / 2);
    }

    // Depth of the 3D box, seen from the front and a little above, to the right.
    const double catSpan = cb.max - cb.min;
    const double catLen = horizontal ? plot.height() : plot.width();
    const double pitch = catLen / catSpan;
    double depth = 0;
    if (view3d) {
        depth = std::clamp(m.Aspect.Chart3DPercent, 0, 100) / 100.0 * std::min(plot.width(), plot.height()) * 0.25;
        depth = std::min(depth, pitch * 0.6);
    }
    const QPointF o(depth * 0.7071, -depth * 0.7071);
    plot.setRight(plot.right() - o.x());
    plot.setTop(plot.top() - o.y());
    if (plot.width() < 10 || plot.height() < 10)
        return;

    // Marks: shrink the font until a mark fits its bar's slot, and leave room for them above
    // (or beside) the longest bar, so no mark runs into a bar or off the chart.
    const double slotLen = (horizontal ? plot.height() : plot.width()) / catSpan / slotCount;
    const double slotW = std::max(1.0, pitch * std::clamp(m.SERIES(drawn.front()).BarWidthPercent, 1, 200) / 100.0);
    std::vector<MarkPlan> plans;
    double markExtent = 0;
    for (int si : drawn) {
        TSeries& s = m.SERIES(si);
        MarkPlan mp = PlanMarks(s, 1.0);
        if (s.Marks.Visible) {
            // A mark sits centred over its bar: it may use the gaps beside the bar, but neither
            // a neighbour bar (with its depth) nor a neighbour's mark.
            const int fixed = horizontal ? s.BarHeight : s.BarWidth;
            const double barW = (!s.AutoBarSize && fixed > 0) ? fixed : slotW / slotCount;
            const double depthPart = horizontal ? -o.y() * std::clamp(s.DepthPercent, 0, 100) / 100.0
                                                : o.x() * std::clamp(s.DepthPercent, 0, 100) / 100.0;
            const double room = std::min(slotLen - 2, 2 * slotLen - barW - depthPart - 2);
            const double need = horizontal ? mp.maxH : mp.maxW;
            if (need > room && need > 0 && !horizontal) {
                // Two lines of full size read better than one of small print.
                MarkPlan wrapped = PlanMarks(s, 1.0, room - 6);
                if (wrapped.maxW < need)
                    mp = std::move(wrapped);
            }
            const double need2 = horizontal ? mp.maxH : mp.maxW;
            if (need2 > room && need2 > 0) {
                const double f = std::max(0.5, room / need2);
                mp = PlanMarks(s, f, horizontal ? 0 : room * 0.9 / f);
            }
            markExtent = std::max(markExtent, (horizontal ? mp.maxW : mp.maxH) + std::max(0, s.Marks.ArrowLength) + 4);
        }
        plans.push_back(std::move(mp));
    }

    const double valLen = horizontal ? plot.width() : plot.height();
    const bool autoMin = val.Automatic || val.AutomaticMinimum;
    const bool autoMax = val.Automatic || val.AutomaticMaximum;
    double step = val.Increment;
    double lo = autoMin ? vmin : val.Minimum;
    double hi = autoMax ? vmax : val.Maximum;
    if (m.freezeValueAxis_) {
        lo = m.frozenMin_;
        hi = m.frozenMax_;
    } else {
        // Room for the marks beyond the longest bar on each side that has bars and moves freely.
        const bool growHi = autoMax && hi > 0, growLo = autoMin && lo < 0;
        const int sides = int(growHi) + int(growLo);
        if (sides > 0 && markExtent > 0 && hi > lo) {
            const double usable = std::max(valLen * 0.35, valLen - sides * markExtent - val.MaximumOffset);
            const double extra = (hi - lo) * (valLen / usable - 1);
            if (growHi)
                hi += extra / sides;
            if (growLo)
                lo -= extra / sides;
        }
        if (hi <= lo)
            hi = lo + 1;
        if (step <= 0) {
            const double labelLen = horizontal ? vfm.horizontalAdvance(TickText(hi, 1)) * 2.2 : vfm.height() * 2.5;
            const int ticks = std::clamp(int(valLen / std::max(1.0, labelLen)), 2, 12);
            step = NiceStep((hi - lo) / ticks, integral && hi - lo >= 2);
        }
        if (autoMax)
            hi = std::ceil(hi / step - 1e-9) * step;
        if (autoMin && lo < 0)
            lo = std::floor(lo / step + 1e-9) * step;
    }
    if (step <= 0) {
        const int ticks = 6;
        step = NiceStep((hi - lo) / ticks, integral && hi - lo >= 2);
    }
    val.drawnMin_ = lo;
    val.drawnMax_ = hi;
    cat.drawnMin_ = cb.min;
    cat.drawnMax_ = cb.max;

    Scale vs, cs;
    vs.min = lo;
    vs.max = hi;
    cs.min = cb.min;
    cs.max = cb.max;
    if (horizontal) {
        vs.from = plot.left() + val.MinimumOffset;
        vs.to = plot.right() - val.MaximumOffset;
        cs.from = plot.bottom() - cat.MinimumOffset;
        cs.to = plot.top() + cat.MaximumOffset;
    } else {
        vs.from = plot.bottom() - val.MinimumOffset;
        vs.to = plot.top() + val.MaximumOffset;
        cs.from = plot.left() + cat.MinimumOffset;
        cs.to = plot.right() - cat.MaximumOffset;
    }
    if (val.Inverted)
        std::swap(vs.from, vs.to);
    if (cat.Inverted)
        std::swap(cs.from, cs.to);

    // Walls and grid.
    p.setPen(Qt::NoPen);
    if (view3d) {
        if (m.Walls.Left.Visible) {
            const QPolygonF wall = horizontal ? QPolygonF({plot.bottomLeft(), plot.bottomRight(), plot.bottomRight() + o, plot.bottomLeft() + o})
                                              : QPolygonF({plot.topLeft(), plot.bottomLeft(), plot.bottomLeft() + o, plot.topLeft() + o});
            FillPoly(p, wall, ToQColor(m.Walls.Left.Color), Qt::NoPen);
        }
        if (m.Walls.Bottom.Visible) {
            const QPolygonF floor = horizontal ? QPolygonF({plot.topLeft(), plot.bottomLeft(), plot.bottomLeft() + o, plot.topLeft() + o})
                                               : QPolygonF({plot.bottomLeft(), plot.bottomRight(), plot.bottomRight() + o, plot.bottomLeft() + o});
            FillPoly(p, floor, ToQColor(m.Walls.Bottom.Color), Qt::NoPen);
        }
    }
    if (m.Walls.Back.Visible) {
        p.setBrush(ToQColor(m.Walls.Back.Color));
        p.setPen(view3d ? QPen(QColor(215, 218, 223), 1) : QPen(Qt::NoPen));
        p.drawRect(plot.translated(o));
    }
    std::vector<double> ticks;
    for (double v = std::ceil(lo / step - 1e-9) * step; v <= hi + step * 1e-9; v += step)
        ticks.push_back(v);
    if (val.GridVisible) {
        p.setPen(QPen(ToQColor(val.GridColor), 1));
        for (double v : ticks) {
            const double px = vs.map(v);
            if (horizontal) {
                p.drawLine(QPointF(px, plot.bottom()) + o, QPointF(px, plot.top()) + o);
                if (view3d)
                    p.drawLine(QPointF(px, plot.bottom()), QPointF(px, plot.bottom()) + o);
            } else {
                p.drawLine(QPointF(plot.left(), px) + o, QPointF(plot.right(), px) + o);
                if (view3d)
                    p.drawLine(QPointF(plot.left(), px), QPointF(plot.left(), px) + o);
            }
        }
    }

    // Bars: in 3D the ones further back-right are drawn first, so nearer faces cover them.
    const double zero = vs.map(std::clamp(0.0, std::min(lo, hi), std::max(lo, hi)));
    struct Item {
        int series, slot, point;
        double pos;
    };
    std::vector<Item> items;
    for (int k = 0; k < int(drawn.size()); ++k) {
        TSeries& s = m.SERIES(drawn[size_t(k)]);
        s.drawn_.assign(size_t(s.Count()), {});
        for (int i = 0; i < s.Count(); ++i) {
            const auto& pt = s.Points()[size_t(i)];
            const double pos = horizontal ? pt.Y : pt.X;
            if (!Drawable(s, pt) || pos < cb.min || pos > cb.max)
                continue;
            items.push_back({drawn[size_t(k)], side ? k : 0, i, pos});
        }
    }
    std::stable_sort(items.begin(), items.end(), [&](const Item& a, const Item& b) {
        const double pa = cs.map(a.pos), pb = cs.map(b.pos);
        return horizontal ? pa > pb : pa < pb;
    });
    struct MarkJob {
        int series, point, plan;
        QRectF bar;
        double end;
    };
    std::vector<MarkJob> marks;
    for (const Item& it : items) {
        TSeries& s = m.SERIES(it.series);
        const auto& pt = s.Points()[size_t(it.point)];
        const double v = horizontal ? pt.X : pt.Y;
        double width = slotW / slotCount;
        const int fixed = horizontal ? s.BarHeight : s.BarWidth;
        if (!s.AutoBarSize && fixed > 0)
            width = fixed;
        const double centre = cs.map(it.pos) + (side ? (it.slot - (slotCount - 1) / 2.0) * (slotW / slotCount) : 0);
        const double end = vs.map(v);
        BarGeom g;
        g.base = zero;
        g.end = end;
        g.depth = o * (std::clamp(s.DepthPercent, 0, 100) / 100.0);
        if (horizontal)
            g.front = QRectF(QPointF(std::min(zero, end), centre - width / 2), QPointF(std::max(zero, end), centre + width / 2));
        else
            g.front = QRectF(QPointF(centre - width / 2, std::min(zero, end)), QPointF(centre + width / 2, std::max(zero, end)));
        DrawBar(p, s, PointColour(s, it.series, it.point), g, horizontal, view3d);
        auto& d = s.drawn_[size_t(it.point)];
        d.valid = true;
        d.hit = g.front.adjusted(0, g.depth.y(), g.depth.x(), 0).toAlignedRect();
        d.pos = horizontal ? QPointF(end, g.front.top()).toPoint() : QPointF(g.front.left(), end).toPoint();
        const int planIndex = int(std::find(drawn.begin(), drawn.end(), it.series) - drawn.begin());
        marks.push_back({it.series, it.point, planIndex, g.front.adjusted(0, g.depth.y(), g.depth.x(), 0), end});
    }

    // Axis lines.
    p.setPen(QPen(ToQColor(val.AxisColor), 1));
    if (val.Visible) {
        if (horizontal)
            p.drawLine(plot.bottomLeft(), plot.bottomRight());
        else
            p.drawLine(plot.bottomLeft(), plot.topLeft());
    }
    if (cat.Visible) {
        p.setPen(QPen(ToQColor(cat.AxisColor), 1));
        if (horizontal)
            p.drawLine(QPointF(zero, plot.bottom()), QPointF(zero, plot.top()));
        else
            p.drawLine(QPointF(plot.left(), zero), QPointF(plot.right(), zero));
    }

    // Value labels.
    if (val.Visible && val.Labels.Visible) {
        for (double v : ticks) {
            const QString t = TickText(v, step);
            TextBlock b = Measure(t, valFont);
            const double px = vs.map(v);
            QRectF box = horizontal ? QRectF(px - b.size.width() / 2, plot.bottom() + 4, b.size.width(), b.size.height())
                                    : QRectF(plot.left() - 6 - b.size.width(), px - b.size.height() / 2, b.size.width(), b.size.height());
            DrawTextBlock(p, b, box, val.Labels.Font, horizontal ? Qt::AlignHCenter : Qt::AlignRight);
        }
    }
    // Category labels: the custom ones if any, else each whole position on view.
    if (cat.Visible && cat.Labels.Visible) {
        struct L {
            double pos;
            QString text;
            const TFont* font;
        };
        std::vector<L> labels;
        if (cat.Labels.Count() > 0) {
            for (const auto& it : cat.Labels.Items())
                if (it.Value >= cb.min && it.Value <= cb.max)
                    labels.push_back({it.Value, it.Text, &it.Font});
        } else {
            for (double v = std::ceil(cb.min); v <= cb.max; v += 1)
                labels.push_back({v, QString::number(qint64(std::llround(v))), &cat.Labels.Font});
        }
        double widest = 1, tallest = 1;
        for (const auto& l : labels) {
            TextBlock b = Measure(l.text, ChartRenderer::MakeFont(*l.font));
            widest = std::max(widest, b.size.width());
            tallest = std::max(tallest, b.size.height());
        }
        const double need = (horizontal ? tallest : widest) * (1 + cat.Labels.Separation / 100.0);
        const int every = std::max(1, int(std::ceil(need / std::max(1.0, pitch))));
        for (size_t i = 0; i < labels.size(); ++i) {
            if (every > 1 && cat.Labels.Count() == 0 && (qint64(std::llround(labels[i].pos - std::ceil(cb.min))) % every) != 0)
                continue;
            TextBlock b = Measure(labels[i].text, ChartRenderer::MakeFont(*labels[i].font));
            const double px = cs.map(labels[i].pos);
            QRectF box = horizontal ? QRectF(plot.left() - 6 - b.size.width(), px - b.size.height() / 2, b.size.width(), b.size.height())
                                    : QRectF(px - b.size.width() / 2, plot.bottom() + 4, b.size.width(), b.size.height());
            DrawTextBlock(p, b, box, *labels[i].font, horizontal ? Qt::AlignRight : Qt::AlignHCenter);
        }
    }
    // Axis titles.
    auto drawTitle = [&](const TAxis& ax, bool isLeft) {
        if (!ax.Visible || !ax.Title.Visible || ax.Title.Caption.isEmpty())
            return;
        const QFont f = ChartRenderer::MakeFont(ax.Title.Font);
        TextBlock b = Measure(ax.Title.Caption, f);
        const bool vertical = ax.Title.Angle == 90 || ax.Title.Angle == 270;
        p.save();
        if (isLeft) {
            p.translate(area.left() + b.size.height() / 2 + 1, plot.center().y());
        } else {
            p.translate(plot.center().x(), area.bottom() - b.size.height() / 2 - 1);
        }
        if (vertical)
            p.rotate(ax.Title.Angle == 90 ? -90 : 90);
        DrawTextBlock(p, b, QRectF(-b.size.width() / 2, -b.size.height() / 2, b.size.width(), b.size.height()), ax.Title.Font);
        p.restore();
    };
    drawTitle(m.Axis.Left, true);
    drawTitle(m.Axis.Bottom, false);

    // Marks last, over every bar.
    for (const MarkJob& j : marks) {
        TSeries& s = m.SERIES(j.series);
        if (!s.Marks.Visible)
            continue;
        const MarkPlan& plan = plans[size_t(j.plan)];
        const TextBlock& b = plan.blocks[size_t(j.point)];
        if (plan.texts[size_t(j.point)].isEmpty())
            continue;
        const QSizeF size(b.size.width() + (s.Marks.Transparent ? 4 : 6), b.size.height() + 2);
        const double gap = std::max(0, s.Marks.ArrowLength);
        const double v = s.PointValue(j.point);
        const bool negative = (v < 0) != val.Inverted;
        QRectF box;
        QPointF from, to;
        if (horizontal) {
            const double cy = j.bar.center().y();
            const double endEdge = negative ? j.bar.left() : j.bar.right();
            box = QRectF(negative ? endEdge - gap - size.width() : endEdge + gap, cy - size.height() / 2, size.width(), size.height());
            from = QPointF(endEdge, cy);
            to = QPointF(negative ? box.right() : box.left(), cy);
        } else {
            const double cx = j.bar.center().x();
            const double endEdge = negative ? j.bar.bottom() : j.bar.top();
            box = QRectF(cx - size.width() / 2, negative ? endEdge + gap : endEdge - gap - size.height(), size.width(), size.height());
            from = QPointF(cx, endEdge);
            to = QPointF(cx, negative ? box.top() : box.bottom());
        }
        StoreMarkPosition(s, j.point, box);
        if (s.Marks.Arrow.Visible && gap > 0) {
            p.setPen(QPen(ToQColor(s.Marks.Arrow.Color), 1));
            p.drawLine(from, to);
        }
        DrawMarkBox(p, s, b, box);
    }
}

// ---- pies and donuts ------------------------------------------------------------------------

QPointF OnEllipse(const QPointF& c, double rx, double ry, double deg)
{
    const double a = deg * kPi / 180.0;
    return QPointF(c.x() + rx * std::cos(a), c.y() - ry * std::sin(a));
}

// The band of an ellipse's rim between two angles, dropped by thickness.
QPainterPath RimBand(const QPointF& c, double rx, double ry, double thick, double a0, double a1)
{
    const QRectF top(c.x() - rx, c.y() - ry, 2 * rx, 2 * ry);
    const QRectF bottom = top.translated(0, thick);
    QPainterPath path;
    path.moveTo(OnEllipse(c, rx, ry, a0));
    path.arcTo(top, a0, a1 - a0);
    path.lineTo(OnEllipse(c + QPointF(0, thick), rx, ry, a1));
    path.arcTo(bottom, a1, a0 - a1);
    path.closeSubpath();
    return path;
}

// Parts of [a0, a1] (degrees, a0 < a1) inside the window [w0, w1] taken modulo 360.
std::vector<std::pair<double, double>> Overlap(double a0, double a1, double w0, double w1)
{
    std::vector<std::pair<double, double>> out;
    for (int k = -2; k <= 2; ++k) {
        const double lo = std::max(a0, w0 + 360.0 * k), hi = std::min(a1, w1 + 360.0 * k);
        if (hi > lo + 1e-6)
            out.push_back({lo, hi});
    }
    return out;
}

void DrawPie(TChartModel& m, QPainter& p, QRectF area, int si)
{
    TSeries& s = m.SERIES(si);
    const bool donut = s.SeriesClassCode() == scDonut;
    const bool view3d = m.Aspect.View3D;
    s.drawn_.assign(size_t(s.Count()), {});

    double total = 0;
    for (const auto& pt : s.Points())
        if (Drawable(s, pt) && pt.Y > 0)
            total += pt.Y;

    MarkPlan plan = PlanMarks(s, 1.0);
    const bool marks = s.Marks.Visible && total > 0;
    const double gap = std::max(0, s.Marks.ArrowLength);
    const double reserveX = marks ? plan.maxW + gap + 6 : 4;
    const double reserveY = marks ? plan.maxH + gap + 4 : 4;

    double ratio = 1, tilt = 0;
    if (view3d) {
        const int e = std::clamp(m.Aspect.Elevation, 270, 360);
        tilt = (360 - e) * kPi / 180.0;
        ratio = std::max(0.3, std::cos(tilt));
    }
    const double thickFactor = view3d ? std::clamp(m.Aspect.Chart3DPercent, 0, 100) / 100.0 * 0.5 * std::max(0.25, std::sin(tilt)) : 0;
    double rx = (area.width() - 2 * reserveX) / 2;
    double ry;
    if (view3d || s.Circled) {
        rx = std::min(rx, (area.height() - 2 * reserveY) / (2 * ratio + thickFactor));
        ry = rx * ratio;
    } else {
        ry = (area.height() - 2 * reserveY) / 2;
    }
    rx = std::max(rx, 4.0);
    ry = std::max(ry, 4.0);
    // A radius of 0 is no size at all: the pie sizes itself, as when none was set.
    if (s.XRadius.custom && s.XRadius.value > 0)
        rx = s.XRadius.value;
    else
        s.XRadius.value = int(std::lround(rx));
    if (s.YRadius.custom && s.YRadius.value > 0)
        ry = s.YRadius.value;
    else
        s.YRadius.value = int(std::lround(ry));
    const double thick = rx * thickFactor;
    const QPointF c(area.center().x(), area.center().y() - thick / 2);
    const double hole = donut ? std::clamp(s.DonutPercent, 0, 95) / 100.0 : 0;

    struct Slice {
        int i;
        double a0, a1; // degrees, counter-clockwise, a0 < a1
        QColor colour;
    };
    std::vector<Slice> slices;
    double cum = 0;
    for (int i = 0; i < s.Count(); ++i) {
        const auto& pt = s.Points()[size_t(i)];
        const double v = (Drawable(s, pt) && pt.Y > 0) ? pt.Y : 0;
        const double start = 90.0 - s.RotationAngle - cum / (total > 0 ? total : 1) * 360.0;
        const double sweep = total > 0 ? v / total * 360.0 : 0;
        cum += v;
        auto& d = s.drawn_[size_t(i)];
        d.pos = OnEllipse(c, rx, ry, start - sweep / 2).toPoint();
        if (sweep <= 0)
            continue;
        slices.push_back({i, start - sweep, start, PointColour(s, si, i)});
    }
    const QPen pen = PenFor(s.PiePen);
    auto sliceBrush = [&](const QColor& col, const QRectF& r) -> QBrush {
        if (!s.Gradient.Visible)
            return col;
        QLinearGradient g(r.topLeft(), r.bottomLeft());
        g.setColorAt(0, col.lighter(125));
        g.setColorAt(1, Blend(col, ToQColor(s.Gradient.EndColor), 0.35));
        return g;
    };

    // Sides first (front half of the outer rim, back half of a donut's hole), then the tops.
    if (thick > 0.5) {
        for (const Slice& sl : slices)
            for (auto [lo, hi] : Overlap(sl.a0, sl.a1, 180, 360)) {
                p.setPen(pen.style() == Qt::NoPen ? QPen(Qt::NoPen) : QPen(sl.colour.darker(150), 1));
                p.setBrush(sl.colour.darker(135));
                p.drawPath(RimBand(c, rx, ry, thick, lo, hi));
            }
        if (donut && hole > 0)
            for (const Slice& sl : slices)
                for (auto [lo, hi] : Overlap(sl.a0, sl.a1, 0, 180)) {
                    p.setPen(Qt::NoPen);
                    p.setBrush(sl.colour.darker(160));
                    p.drawPath(RimBand(c, rx * hole, ry * hole, thick, lo, hi));
                }
    }
    const QRectF outer(c.x() - rx, c.y() - ry, 2 * rx, 2 * ry);
    const QRectF inner(c.x() - rx * hole, c.y() - ry * hole, 2 * rx * hole, 2 * ry * hole);
    for (const Slice& sl : slices) {
        QPainterPath path;
        if (donut && hole > 0) {
            path.moveTo(OnEllipse(c, rx, ry, sl.a0));
            path.arcTo(outer, sl.a0, sl.a1 - sl.a0);
            path.lineTo(OnEllipse(c, rx * hole, ry * hole, sl.a1));
            path.arcTo(inner, sl.a1, sl.a0 - sl.a1);
            path.closeSubpath();
        } else {
            path.moveTo(c);
            path.arcTo(outer, sl.a0, sl.a1 - sl.a0);
            path.closeSubpath();
        }
        p.setPen(pen);
        p.setBrush(sliceBrush(sl.colour, outer));
        p.drawPath(path);
        s.drawn_[size_t(sl.i)].valid = true;
        s.drawn_[size_t(sl.i)].hit = path.boundingRect().toAlignedRect();
    }

    if (!marks)
        return;
    // Marks outside the rim, moved apart on each side so neighbours never overlap.
    struct M {
        int i;
        QRectF box;
        QPointF anchor, tip;
        bool right;
    };
    std::vector<M> ms;
    for (const Slice& sl : slices) {
        if (plan.texts[size_t(sl.i)].isEmpty())
            continue;
        const double mid = (sl.a0 + sl.a1) / 2;
        const double ca = std::cos(mid * kPi / 180), sa = std::sin(mid * kPi / 180);
        QPointF anchor = OnEllipse(c, rx, ry, mid);
        if (sa < 0)
            anchor.ry() += thick;
        const QPointF tip = anchor + QPointF(ca, -sa) * gap;
        const TextBlock& b = plan.blocks[size_t(sl.i)];
        const QSizeF size(b.size.width() + (s.Marks.Transparent ? 4 : 6), b.size.height() + 2);
        const bool right = ca >= 0;
        QRectF box(right ? tip.x() + 2 : tip.x() - 2 - size.width(), tip.y() - size.height() / 2, size.width(), size.height());
        ms.push_back({sl.i, box, anchor, tip, right});
    }
    for (int sideRight = 0; sideRight < 2; ++sideRight) {
        std::vector<M*> col;
        for (auto& mm : ms)
            if (mm.right == bool(sideRight) && !s.Marks.Positions.Position(mm.i).Custom)
                col.push_back(&mm);
        std::sort(col.begin(), col.end(), [](const M* a, const M* b) { return a->box.top() < b->box.top(); });
        for (size_t k = 1; k < col.size(); ++k)
            if (col[k]->box.top() < col[k - 1]->box.bottom())
                col[k]->box.moveTop(col[k - 1]->box.bottom());
        if (!col.empty() && col.back()->box.bottom() > area.bottom()) {
            col.back()->box.moveBottom(area.bottom());
            for (size_t k = col.size() - 1; k-- > 0;)
                if (col[k]->box.bottom() > col[k + 1]->box.top())
                    col[k]->box.moveBottom(col[k + 1]->box.top());
        }
    }
    for (auto& mm : ms) {
        StoreMarkPosition(s, mm.i, mm.box);
        if (s.Marks.Arrow.Visible && gap > 0) {
            p.setPen(QPen(ToQColor(s.Marks.Arrow.Color), 1));
            const QPointF end(mm.right ? mm.box.left() : mm.box.right(), mm.box.center().y());
            p.drawPolyline(QPolygonF({mm.anchor, mm.tip, end}));
        }
        DrawMarkBox(p, s, plan.blocks[size_t(mm.i)], mm.box);
    }
}

// ---- word clouds -----------------------------------------------------------------------------

constexpr double kWordGap = 2;     // pixels kept free between the ink of two words
constexpr double kWordFloorPt = 6; // a word shrunk to fit goes no smaller

// Ink box of text whose baseline starts at (0, 0), with a margin that grows with the size so big
// words do not touch. A path, not the metrics, so that accents and glyphs from a fallback font
// count, and words pack by what is actually drawn.
QRectF InkBox(const QString& text, const QFont& font)
{
    const double margin = std::max(1.0, font.pixelSize() / 24.0);
    QPainterPath path;
    path.addText(QPointF(0, 0), font, text);
    QRectF r = path.boundingRect();
    if (r.isEmpty()) {
        const QFontMetricsF fm(font);
        r = QRectF(0, -fm.ascent(), std::max(1.0, fm.horizontalAdvance(text)), fm.height());
    }
    return r.adjusted(-margin, -margin, margin, margin);
}

// Points along an outward spiral from the plot's centre, pitch pixels apart along the curve and
// between turns, stretched to the plot's shape so that the cloud fills a wide plot sideways; out
// to where the spiral has passed every corner.
std::vector<QPointF> SpiralPoints(const QRectF& plot, double pitch)
{
    const bool wide = plot.width() >= plot.height();
    const double sx = wide ? plot.width() / plot.height() : 1.0;
    const double sy = wide ? 1.0 : plot.height() / plot.width();
    const double rEnd = std::min(plot.width(), plot.height()) / std::sqrt(2.0) + pitch;
    const QPointF c = plot.center();
    std::vector<QPointF> out;
    for (double theta = 0;;) {
        const double r = pitch * theta / (2 * kPi);
        if (r > rEnd)
            return out;
        out.emplace_back(c.x() + r * sx * std::cos(theta), c.y() + r * sy * std::sin(theta));
        theta += pitch / std::max(pitch, r * std::max(sx, sy));
    }
}

// The part of the plot the words placed so far take, on a grid of small cells: a cell is
// touched when a word's box (with the gap round it) reaches into it, covered when the box takes
// all of it. Touched cells are summed so that a rectangle of cells counts at once: one lying
// wholly inside a candidate box is overlap for certain, and most spiral positions are turned
// down without looking at a single word.
class WordSpace {
public:
    explicit WordSpace(const QRectF& plot)
        : plot_(plot), unit_(std::max(1.0, std::ceil(std::max(plot.width(), plot.height()) / 2000))), cell_(2 * unit_),
          cols_(int(std::ceil(plot.width() / cell_)) + 1), rows_(int(std::ceil(plot.height() / cell_)) + 1),
          cells_(size_t(cols_) * size_t(rows_), 0), sums_(size_t(cols_ + 1) * size_t(rows_ + 1), 0)
    {
    }

    const QRectF& plot() const { return plot_; }
    // Cells and spiral steps grow on a huge plot, so the grid and the spirals stay a few
    // megabytes.
    double unit() const { return unit_; }

    // A word's box that was nowhere free: no box at least as large will be either.
    bool Hopeless(const QSizeF& size) const
    {
        return std::any_of(failed_.begin(), failed_.end(),
                           [&](const QSizeF& f) { return size.width() >= f.width() && size.height() >= f.height(); });
    }
    void Failed(const QSizeF& size) { failed_.push_back(size); }

    // A word centred on a covered point overlaps another whatever its size, so each spiral
    // skips such points for good: next[i] leads on to a point not yet found covered.
    struct Spiral {
        std::vector<QPointF> points;
        std::vector<int> next;
    };
    Spiral& SpiralOf(int pitch)
    {
        Spiral& sp = spirals_[pitch];
        if (sp.next.empty()) {
            sp.points = SpiralPoints(plot_, pitch * unit_);
            sp.next.resize(sp.points.size() + 1);
            std::iota(sp.next.begin(), sp.next.end(), 0);
        }
        return sp;
    }

    bool Covered(const QPointF& pt) const
    {
        const int x = int((pt.x() - plot_.left()) / cell_), y = int((pt.y() - plot_.top()) / cell_);
        return x >= 0 && y >= 0 && x < cols_ && y < rows_ && cells_[size_t(y) * size_t(cols_) + size_t(x)] == kCovered;
    }

    bool Free(const QRectF& box)
    {
        if (box.left() < plot_.left() || box.top() < plot_.top() || box.right() > plot_.right() || box.bottom() > plot_.bottom())
            return false;
        const int x0 = int(std::ceil((box.left() - plot_.left()) / cell_)), x1 = int(std::floor((box.right() - plot_.left()) / cell_));
        const int y0 = int(std::ceil((box.top() - plot_.top()) / cell_)), y1 = int(std::floor((box.bottom() - plot_.top()) / cell_));
        if (x1 > x0 && y1 > y0 && sum(x0, y0, x1, y1) > 0)
            return false;
        const QRectF grown = box.adjusted(-kWordGap, -kWordGap, kWordGap, kWordGap);
        // Neighbouring spiral positions mostly run into the same word: try that one first.
        if (lastHit_ < placed_.size() && grown.intersects(placed_[lastHit_]))
            return false;
        for (size_t k = 0; k < placed_.size(); ++k)
            if (grown.intersects(placed_[k])) {
                lastHit_ = k;
                return false;
            }
        return true;
    }

    void Take(const QRectF& box)
    {
        placed_.push_back(box);
        const QRectF grown = box.adjusted(-kWordGap, -kWordGap, kWordGap, kWordGap);
        const double l = (grown.left() - plot_.left()) / cell_, r = (grown.right() - plot_.left()) / cell_;
        const double t = (grown.top() - plot_.top()) / cell_, b = (grown.bottom() - plot_.top()) / cell_;
        const int x0 = std::max(0, int(std::floor(l))), x1 = std::min(cols_, int(std::ceil(r)));
        const int y0 = std::max(0, int(std::floor(t))), y1 = std::min(rows_, int(std::ceil(b)));
        for (int y = y0; y < y1; ++y)
            for (int x = x0; x < x1; ++x) {
                char& c = cells_[size_t(y) * size_t(cols_) + size_t(x)];
                if (x >= l && x + 1 <= r && y >= t && y + 1 <= b)
                    c = kCovered;
                else
                    c = std::max(c, kTouched);
            }
        // Sums change only from the box's first row down.
        for (int y = y0; y < rows_; ++y)
            for (int x = 0; x < cols_; ++x)
                at(x + 1, y + 1) = (cells_[size_t(y) * size_t(cols_) + size_t(x)] != 0) + at(x, y + 1) + at(x + 1, y) - at(x, y);
    }

private:
    static constexpr char kTouched = 1, kCovered = 2;

    int& at(int x, int y) { return sums_[size_t(y) * size_t(cols_ + 1) + size_t(x)]; }
    int sum(int x0, int y0, int x1, int y1)
    {
        x0 = std::clamp(x0, 0, cols_), x1 = std::clamp(x1, 0, cols_), y0 = std::clamp(y0, 0, rows_), y1 = std::clamp(y1, 0, rows_);
        return at(x1, y1) - at(x0, y1) - at(x1, y0) + at(x0, y0);
    }

    QRectF plot_;
    double unit_, cell_;
    int cols_, rows_;
    std::vector<char> cells_;
    std::vector<int> sums_;
    std::vector<QRectF> placed_;
    std::vector<QSizeF> failed_;
    size_t lastHit_ = 0;
    std::map<int, Spiral> spirals_; // by pitch
};

int NextOpen(std::vector<int>& next, int i)
{
    while (next[size_t(i)] != i) {
        next[size_t(i)] = next[size_t(next[size_t(i)])];
        i = next[size_t(i)];
    }
    return i;
}

// The first free spot for a word along the spiral; the baseline origin, or nothing.
std::optional<QPointF> SpiralPlace(WordSpace& space, const QRectF& ink)
{
    const QRectF& plot = space.plot();
    const double w = ink.width(), h = ink.height();
    if (w > plot.width() || h > plot.height() || space.Hopeless(ink.size()))
        return std::nullopt;
    // Finer steps for small words, which fill the gaps the big ones leave.
    WordSpace::Spiral& sp = space.SpiralOf(std::clamp(int(h / 4 / space.unit()), 2, 7));
    const QPointF toOrigin(-w / 2 - ink.left(), -h / 2 - ink.top());
    const int end = int(sp.points.size());
    for (int i = NextOpen(sp.next, 0); i < end; i = NextOpen(sp.next, i + 1)) {
        const QPointF& pt = sp.points[size_t(i)];
        if (space.Covered(pt)) {
            sp.next[size_t(i)] = i + 1;
            continue;
        }
        const QPointF origin(std::round(pt.x() + toOrigin.x()), std::round(pt.y() + toOrigin.y()));
        if (space.Free(ink.translated(origin)))
            return origin;
    }
    space.Failed(ink.size());
    return std::nullopt;
}

void DrawWordCloud(TChartModel& m, QPainter& p, const QRectF& area, int si)
{
    TSeries& s = m.SERIES(si);
    s.drawn_.assign(size_t(s.Count()), {});
    for (const WordPlacement& w : ChartRenderer::LayoutWordCloud(s, area)) {
        p.setFont(w.font);
        p.setPen(w.colour);
        p.drawText(w.baseline, w.text);
        auto& d = s.drawn_[size_t(w.point)];
        d.valid = true;
        d.hit = w.box.toAlignedRect();
        d.pos = w.box.center().toPoint();
    }
}

} // namespace

QFont ChartRenderer::MakeFont(const TFont& f, double scale)
{
    QFont font(FamilyInstalled(f.Name) ? f.Name : QStringLiteral("DejaVu Sans"));
    font.setPixelSize(std::max(1, int(std::lround(std::max(1, f.Size) * kPxPerPt * scale))));
    font.setBold(f.Bold);
    font.setItalic(f.Italic);
    font.setUnderline(f.Underline);
    font.setStrikeOut(f.StrikeThrough);
    font.setHintingPreference(QFont::PreferNoHinting);
    return font;
}

QString ChartRenderer::MapSymbolText(const TFont& font, const QString& text)
{
    if (font.Name.compare(QLatin1String("Wingdings"), Qt::CaseInsensitive) != 0 || FamilyInstalled(font.Name))
        return text;
    QString out;
    for (QChar ch : text) {
        switch (ch.unicode()) {
        case 0xFC: out += QChar(0x2714); break; // tick
        case 0xFB: out += QChar(0x2718); break; // cross
        case 0xFE: out += QChar(0x2611); break; // ticked box
        case 0xFD: out += QChar(0x2612); break; // crossed box
        case 0x6C: out += QChar(0x25CF); break; // disc
        case 0x6E: out += QChar(0x25A0); break; // square
        case 0xE8: out += QChar(0x2794); break; // arrow right
        case 0xE7: out += QChar(0x2190); break; // arrow left
        case 0x4A: out += QChar(0x263A); break; // smiley
        default: out += ch; break;
        }
    }
    return out;
}

void ChartRenderer::Draw(TChartModel& m, QPainter& p, const QRect& rect)
{
    p.save();
    p.setRenderHint(QPainter::Antialiasing, true);
    p.setRenderHint(QPainter::TextAntialiasing, true);
    p.setRenderHint(QPainter::SmoothPixmapTransform, true);

    if (m.Panel.Color != clNone)
        p.fillRect(rect, ToQColor(m.Panel.Color));
    if (!m.Panel.backImage.isNull()) {
        const QImage& img = m.Panel.backImage;
        switch (m.Panel.BackImageMode) {
        case 0: p.drawImage(rect.topLeft(), img); break;
        case 2: p.drawTiledPixmap(rect, QPixmap::fromImage(img)); break;
        case 3: p.drawImage(QPointF(rect.center()) - QPointF(img.width() / 2.0, img.height() / 2.0), img); break;
        default: p.drawImage(QRectF(rect), img); break;
        }
    }

    QRectF area(rect);
    if (m.Panel.MarginUnits == 1)
        area.adjust(m.Panel.MarginLeft, m.Panel.MarginTop, -m.Panel.MarginRight, -m.Panel.MarginBottom);
    else
        area.adjust(rect.width() * m.Panel.MarginLeft / 100.0, rect.height() * m.Panel.MarginTop / 100.0,
                    -rect.width() * m.Panel.MarginRight / 100.0, -rect.height() * m.Panel.MarginBottom / 100.0);

    area = DrawHeader(m, p, area);
    std::vector<int> active;
    for (int i = 0; i < m.SeriesCount(); ++i) {
        if (m.SERIES(i).Active)
            active.push_back(i);
        else
            m.SERIES(i).drawn_.clear();
    }
    // A word cloud is the whole chart: no legend, axes or walls.
    const bool cloud = !active.empty() && m.SERIES(active.front()).IsWordCloud();
    if (!cloud)
        area = DrawLegend(m, p, area, active);

    if (!active.empty() && area.width() > 8 && area.height() > 8) {
        const TSeries& first = m.SERIES(active.front());
        if (cloud) {
            DrawWordCloud(m, p, area, active.front());
        } else if (first.IsPieKind()) {
            DrawPie(m, p, area, active.front());
        } else {
            std::vector<int> bars;
            for (int i : active)
                if (m.SERIES(i).IsBarKind())
                    bars.push_back(i);
            DrawBars(m, p, area, bars);
        }
    }
    DrawAnnotations(m, p, QRectF(rect));
    if (m.Frame.Visible && m.Frame.Color != clNone) {
        p.setPen(QPen(ToQColor(m.Frame.Color), 1));
        p.setBrush(Qt::NoBrush);
        p.drawRect(QRectF(rect).adjusted(0.5, 0.5, -0.5, -0.5));
    }
    p.restore();
}

std::vector<WordPlacement> ChartRenderer::LayoutWordCloud(const TSeries& s, const QRectF& plot)
{
    struct Word {
        int point;
        QString text;
        double count;
    };
    std::vector<Word> words;
    for (int i = 0; i < s.Count(); ++i) {
        const auto& pt = s.Points()[size_t(i)];
        QString text = pt.Label.simplified(); // one line, whatever the answer held
        if (Drawable(s, pt) && pt.Y > 0 && !text.isEmpty())
            words.push_back({i, std::move(text), pt.Y});
    }
    std::vector<WordPlacement> out;
    if (words.empty() || plot.width() < 1 || plot.height() < 1)
        return out;
    std::stable_sort(words.begin(), words.end(), [](const Word& a, const Word& b) { return a.count > b.count; });
    const double cmax = words.front().count, cmin = words.back().count;
    const double ptMin = std::max(1, std::min(s.WordFontMin, s.WordFontMax));
    const double ptMax = std::max<double>(ptMin, std::max(s.WordFontMin, s.WordFontMax));
    const QColor colMin = ToQColor(s.WordColorMin), colMax = ToQColor(s.WordColorMax);
    const QFont base = MakeFont(s.Marks.Font);

    WordSpace space(plot);
    // A word is never drawn larger than one with a higher count, even when that one was shrunk.
    int capPx = std::numeric_limits<int>::max();
    for (const Word& w : words) {
        const double t = cmax > cmin ? (w.count - cmin) / (cmax - cmin) : 1.0;
        const int nominalPx = std::max(1, int(std::lround((ptMin + (ptMax - ptMin) * t) * kPxPerPt)));
        const int floorPx = std::min(nominalPx, int(std::lround(kWordFloorPt * kPxPerPt)));
        const auto& pt = s.Points()[size_t(w.point)];
        for (int px = std::min(nominalPx, capPx); px >= floorPx;) {
            QFont font = base;
            font.setPixelSize(px);
            const QRectF ink = InkBox(w.text, font);
            if (const auto origin = SpiralPlace(space, ink)) {
                WordPlacement wp;
                wp.point = w.point;
                wp.text = w.text;
                wp.font = font;
                wp.colour = pt.Color != clNone ? ToQColor(pt.Color) : Blend(colMin, colMax, t);
                wp.box = ink.translated(*origin);
                wp.baseline = *origin;
                space.Take(wp.box);
                out.push_back(std::move(wp));
                capPx = px;
                break;
            }
            if (px == floorPx)
                break;
            px = std::max(floorPx, std::min(px - 1, int(px * 0.85)));
        }
    }
    return out;
}

void ChartRenderer::FreezeValueAxis(TChartModel& m)
{
    QImage scratch(m.drawSize().expandedTo(QSize(16, 16)), QImage::Format_ARGB32_Premultiplied);
    {
        QPainter p(&scratch);
        Draw(m, p, scratch.rect());
    }
    bool horizontal = false;
    for (int i = 0; i < m.SeriesCount(); ++i)
        if (m.SERIES(i).Active) {
            horizontal = m.SERIES(i).IsHorizontal();
            break;
        }
    const TAxis& val = horizontal ? m.Axis.Bottom : m.Axis.Left;
    m.frozenMin_ = val.drawnMin_;
    m.frozenMax_ = val.drawnMax_;
    m.freezeValueAxis_ = true;
}

void ChartRenderer::ThawValueAxis(TChartModel& m) { m.freezeValueAxis_ = false; }

} // namespace tallix
