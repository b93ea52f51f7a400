#include "chartsurface/chart_model.h"

#include "chartsurface/chart_renderer.h"
#include "foundation/vb_error.h"

#include <QImageReader>
#include <QPainter>

#include <algorithm>
#include <cmath>

namespace tallix {

QColor ToQColor(OleColor c)
{
    if (c == clNone)
        return QColor(Qt::transparent);
    return QColor(int(c & 0xFF), int((c >> 8) & 0xFF), int((c >> 16) & 0xFF));
}

OleColor FromQColor(const QColor& c)
{
    if (c.alpha() == 0)
        return clNone;
    return Rgb(c.red(), c.green(), c.blue());
}

OleColor DefaultPaletteColor(int index)
{
    // A light, distinct set that sits well on a white or a dark slide.
    static const OleColor palette[] = {
        Rgb(68, 114, 196), Rgb(237, 125, 49), Rgb(112, 173, 71), Rgb(255, 192, 0),
        Rgb(91, 155, 213), Rgb(165, 165, 165), Rgb(158, 72, 14), Rgb(38, 68, 120),
        Rgb(99, 99, 99),   Rgb(153, 115, 0),  Rgb(67, 104, 43), Rgb(124, 175, 221),
    };
    constexpr int n = int(sizeof(palette) / sizeof(palette[0]));
    return palette[((index % n) + n) % n];
}

// ---- mark positions ---------------------------------------------------------------------

TMarkPosition& TMarkPositions::Position(int index)
{
    // Marks exist for every point, drawn or not; positions beyond the points do not.
    if (index < 0 || index >= std::max(owner_->Count(), int(list_.size())))
        Raise(ErrNo::SubscriptOutOfRange, QStringLiteral("Mark position %1 out of range").arg(index));
    if (index >= int(list_.size()))
        list_.resize(size_t(index) + 1);
    return list_[size_t(index)];
}

// ---- value lists ------------------------------------------------------------------------

double TValueList::Value(int index) const
{
    owner_->checkIndex(index);
    const auto& p = owner_->points_[size_t(index)];
    return isX_ ? p.X : p.Y;
}

int TValueList::Count() const { return owner_->Count(); }

void TValueList::Sort()
{
    if (Order != 1 && Order != 2)
        return;
    auto& pts = owner_->points_;
    const bool x = isX_;
    const bool asc = Order == 1;
    // Stable, so equal values keep the order they were added in.
    std::stable_sort(pts.begin(), pts.end(), [x, asc](const TChartPoint& a, const TChartPoint& b) {
        const double va = x ? a.X : a.Y, vb = x ? b.X : b.Y;
        return asc ? va < vb : va > vb;
    });
    owner_->Marks.Positions.Clear();
}

void TValueList::FillSequence()
{
    auto& pts = owner_->points_;
    for (size_t i = 0; i < pts.size(); ++i)
        (isX_ ? pts[i].X : pts[i].Y) = double(i);
}

// ---- series -----------------------------------------------------------------------------

TSeries::TSeries(int code) : XValues(this, true), YValues(this, false), Marks(this), code_(code)
{
    if (IsPieKind()) {
        ColorEachPoint = true;
        Marks.Style = 1;
    }
}

TSeries& TSeries::view(int code, const char* name)
{
    if (code_ != code)
        Raise(ErrNo::ObjectVariableNotSet,
              QStringLiteral("The series is not of the class %1").arg(QLatin1String(name)));
    return *this;
}

TSeries& TSeries::asBar() { return view(scBar, "asBar"); }
TSeries& TSeries::asHorizBar() { return view(scHorizBar, "asHorizBar"); }
TSeries& TSeries::asPie() { return view(scPie, "asPie"); }
TSeries& TSeries::asDonut() { return view(scDonut, "asDonut"); }
TSeries& TSeries::asWordCloud() { return view(scWordCloud, "asWordCloud"); }

void TSeries::checkIndex(int index) const
{
    if (index < 0 || index >= int(points_.size()))
        Raise(ErrNo::SubscriptOutOfRange,
              QStringLiteral("Point index %1 out of range (%2 points)").arg(index).arg(points_.size()));
}

int TSeries::Add(double value, const QString& label, OleColor colour)
{
    TChartPoint p;
    const double seq = double(points_.size());
    if (IsHorizontal()) {
        p.X = value;
        p.Y = seq;
    } else {
        p.X = seq;
        p.Y = value;
    }
    p.Label = label;
    p.Color = colour;
    points_.push_back(p);
    return int(points_.size()) - 1;
}

int TSeries::AddNull()
{
    const int i = Add(0, {}, clNone);
    points_[size_t(i)].IsNull = true;
    return i;
}

void TSeries::Delete(int index)
{
    checkIndex(index);
    points_.erase(points_.begin() + index);
    if (index < Marks.Positions.Count())
        Marks.Positions.list_.erase(Marks.Positions.list_.begin() + index);
    // Positions that were sequence numbers stay consecutive, as the remaining points close up.
    TValueList& pos = IsHorizontal() ? YValues : XValues;
    bool sequential = true;
    for (size_t i = 0; i < points_.size() && sequential; ++i) {
        const double v = IsHorizontal() ? points_[i].Y : points_[i].X;
        sequential = v == double(i) || v == double(i + 1);
    }
    if (sequential)
        pos.FillSequence();
}

void TSeries::Clear()
{
    points_.clear();
    Marks.Positions.Clear();
    drawn_.clear();
}

double& TSeries::PointValue(int index)
{
    checkIndex(index);
    auto& p = points_[size_t(index)];
    return IsHorizontal() ? p.X : p.Y;
}

QString& TSeries::PointLabel(int index)
{
    checkIndex(index);
    return points_[size_t(index)].Label;
}

OleColor& TSeries::PointColor(int index)
{
    checkIndex(index);
    return points_[size_t(index)].Color;
}

bool TSeries::IsNull(int index) const
{
    checkIndex(index);
    return points_[size_t(index)].IsNull;
}

namespace {

// Labels compare without regard to case, and runs of digits by their number, so that
// "2) " comes before "10) ".
int CompareLabels(const QString& a, const QString& b)
{
    qsizetype i = 0, j = 0;
    while (i < a.size() && j < b.size()) {
        if (a[i].isDigit() && b[j].isDigit()) {
            qsizetype ie = i, je = j;
            while (ie < a.size() && a[ie].isDigit())
                ++ie;
            while (je < b.size() && b[je].isDigit())
                ++je;
            QStringView da = QStringView(a).mid(i, ie - i), db = QStringView(b).mid(j, je - j);
            while (da.size() > 1 && da.front() == u'0')
                da = da.mid(1);
            while (db.size() > 1 && db.front() == u'0')
                db = db.mid(1);
            if (da.size() != db.size())
                return da.size() < db.size() ? -1 : 1;
            if (const int c = da.compare(db); c != 0)
                return c;
            i = ie;
            j = je;
            continue;
        }
        const QChar ca = a[i].toCaseFolded(), cb = b[j].toCaseFolded();
        if (ca != cb)
            return ca < cb ? -1 : 1;
        ++i;
        ++j;
    }
    return (a.size() - i > 0) - (b.size() - j > 0);
}

} // namespace

void TSeries::SortByLabels(int order)
{
    if (order != 1 && order != 2)
        return;
    const bool asc = order == 1;
    std::stable_sort(points_.begin(), points_.end(), [asc](const TChartPoint& a, const TChartPoint& b) {
        const int c = CompareLabels(a.Label, b.Label);
        return asc ? c < 0 : c > 0;
    });
    // The points are drawn in their new order.
    (IsHorizontal() ? YValues : XValues).FillSequence();
    Marks.Positions.Clear();
}

int TSeries::CalcXPos(int index) const
{
    checkIndex(index);
    return index < int(drawn_.size()) ? drawn_[size_t(index)].pos.x() : 0;
}

int TSeries::CalcYPos(int index) const
{
    checkIndex(index);
    return index < int(drawn_.size()) ? drawn_[size_t(index)].pos.y() : 0;
}

int TSeries::Clicked(int x, int y) const
{
    for (int i = int(drawn_.size()) - 1; i >= 0; --i)
        if (drawn_[size_t(i)].valid && drawn_[size_t(i)].hit.contains(x, y))
            return i;
    return -1;
}

// ---- panel, page, axis labels, tools ----------------------------------------------------

void TPanel::BackImageLoad(const QString& file)
{
    QImageReader reader(file);
    QImage img = reader.read();
    if (img.isNull())
        Raise(ErrNo::FileNotFound,
              QStringLiteral("Cannot load background picture %1: %2").arg(file, reader.errorString()));
    backImage = img;
}

int TPage::Count() const
{
    int points = 0;
    for (int s = 0; s < owner_->SeriesCount(); ++s)
        points = std::max(points, owner_->SERIES(s).Count());
    if (MaxPointsPerPage <= 0 || points <= MaxPointsPerPage)
        return 1;
    return (points + MaxPointsPerPage - 1) / MaxPointsPerPage;
}

void TPage::Next()
{
    if (Current < Count())
        ++Current;
}

void TPage::Previous()
{
    if (Current > 1)
        --Current;
}

int TAxisLabels::Add(double value, const QString& text)
{
    TAxisLabelItem item;
    item.Value = value;
    item.Text = text;
    item.Font = Font;
    items_.push_back(item);
    return int(items_.size()) - 1;
}

TAxisLabelItem& TAxisLabels::Item(int index)
{
    if (index < 0 || index >= int(items_.size()))
        Raise(ErrNo::SubscriptOutOfRange, QStringLiteral("Axis label %1 out of range").arg(index));
    return items_[size_t(index)];
}

TAnnotationTool& TTool::asAnnotation()
{
    if (ToolType != tkAnnotation)
        Raise(ErrNo::ObjectVariableNotSet, QStringLiteral("The tool is not a text annotation"));
    return ann_;
}

TSeriesAnimationTool& TTool::asSeriesAnimation()
{
    if (ToolType != tkSeriesAnimation)
        Raise(ErrNo::ObjectVariableNotSet, QStringLiteral("The tool is not a series animation"));
    return anim_;
}

int TTools::Add(int kind)
{
    if (kind != tkAnnotation && kind != tkSeriesAnimation)
        Raise(ErrNo::InvalidProcedureCall, QStringLiteral("Unknown tool kind %1").arg(kind));
    tools_.push_back(std::make_unique<TTool>(kind, owner_));
    return int(tools_.size()) - 1;
}

TTool& TTools::Items(int index)
{
    if (index < 0 || index >= int(tools_.size()))
        Raise(ErrNo::SubscriptOutOfRange, QStringLiteral("Tool %1 out of range").arg(index));
    return *tools_[size_t(index)];
}

void TTools::Delete(int index)
{
    Items(index);
    tools_.erase(tools_.begin() + index);
}

void TSeriesAnimationTool::Execute()
{
    if (running_ || Series < 0 || Series >= owner_->SeriesCount())
        return;
    TSeries& s = owner_->SERIES(Series);
    const int steps = std::max(1, Steps);
    const int every = DrawEvery <= 1 ? 1 : DrawEvery;
    std::vector<double> target;
    target.reserve(size_t(s.Count()));
    for (int i = 0; i < s.Count(); ++i)
        target.push_back(s.PointValue(i));
    double base = 0;
    if (StartAtMin && !target.empty())
        base = *std::min_element(target.begin(), target.end());

    // Keep the axis where the full values put it, so the bars grow against a still scale.
    ChartRenderer::FreezeValueAxis(*owner_);
    running_ = true;
    struct Restore {
        TChartModel* m;
        TSeries& s;
        std::vector<double>& target;
        bool& running;
        ~Restore()
        {
            for (int i = 0; i < s.Count() && i < int(target.size()); ++i)
                s.PointValue(i) = target[size_t(i)];
            ChartRenderer::ThawValueAxis(*m);
            running = false;
        }
    } restore{owner_, s, target, running_};

    for (int step = 1; step <= steps; ++step) {
        const double f = double(step) / steps;
        for (int i = 0; i < s.Count() && i < int(target.size()); ++i)
            s.PointValue(i) = base + (target[size_t(i)] - base) * f;
        if (step % every == 0 || step == steps)
            owner_->Repaint();
    }
}

// ---- the chart model --------------------------------------------------------------------

TChartModel::TChartModel()
{
    Axis.Left.Title.Angle = 90;
    Axis.Bottom.GridVisible = false;
    for (TAxis* ax : {&Axis.Left, &Axis.Bottom}) {
        ax->Labels.Font.Size = 9;
        ax->Labels.Font.Color = Rgb(80, 84, 90);
        ax->Title.Font.Color = Rgb(64, 64, 64);
    }
    Legend.Font.Size = 9;
    Header.Font.Size = 14;
    Header.Font.Bold = true;
    Header.Font.Color = Rgb(40, 40, 40);
}

TChartModel::~TChartModel() = default;

void TChartModel::RemoveAllSeries() { series_.clear(); }

int TChartModel::AddSeries(int code)
{
    if (code != scBar && code != scHorizBar && code != scPie && code != scDonut && code != scWordCloud)
        Raise(ErrNo::InvalidProcedureCall, QStringLiteral("Unknown series class %1").arg(code));
    series_.push_back(std::make_unique<TSeries>(code));
    return int(series_.size()) - 1;
}

void TChartModel::RemoveSeries(int index)
{
    SERIES(index);
    series_.erase(series_.begin() + index);
}

TSeries& TChartModel::SERIES(int index)
{
    if (index < 0 || index >= int(series_.size()))
        Raise(ErrNo::SubscriptOutOfRange,
              QStringLiteral("Series %1 out of range (%2 series)").arg(index).arg(series_.size()));
    return *series_[size_t(index)];
}

const TSeries& TChartModel::SERIES(int index) const
{
    return const_cast<TChartModel*>(this)->SERIES(index);
}

void TChartModel::Repaint() { renderHeadless(); }

void TChartModel::renderHeadless()
{
    const QSize size = drawSize();
    // A redraw asked for from inside the after-draw event is dropped, as a window drops a
    // recursive repaint; otherwise a handler that repaints would never return.
    if (size.width() <= 0 || size.height() <= 0 || inHeadlessDraw_)
        return;
    inHeadlessDraw_ = true;
    struct Reset {
        bool& flag;
        ~Reset() { flag = false; }
    } reset{inHeadlessDraw_};
    if (lastFrame_.size() != size)
        lastFrame_ = QImage(size, QImage::Format_ARGB32_Premultiplied);
    lastFrame_.fill(Qt::transparent);
    {
        QPainter p(&lastFrame_);
        ChartRenderer::Draw(*this, p, QRect(QPoint(0, 0), size));
    }
    afterDraw();
}

} // namespace tallix
