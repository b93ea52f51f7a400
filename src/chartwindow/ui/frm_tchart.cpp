#include "frm_tchart.h"

#include "charts/chart_procedures.h"
#include "charts/ui/chart_display.h"
#include "controller/comms.h"
#include "foundation/error_report.h"
#include "foundation/event_pump.h"
#include "foundation/host.h"
#include "foundation/logs.h"
#include "livewindow/window_placement.h"
#include "results/common_io.h"
#include "vote/run_context.h"
#include "vote/vote_close.h"
#include "vote/vote_main.h"

#include <QGuiApplication>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QScreen>

namespace tallix {

namespace {
const char* kModule = "FrmTChart";

// Windows virtual key codes, as the chart surface reports them.
enum Vk {
    vkBack = 8, vkEscape = 27, vkSpace = 32, vkPrior = 33, vkNext = 34, vkLeft = 37, vkUp = 38, vkRight = 39,
    vkDown = 40
};
constexpr int kShiftCtrl = 2;
constexpr int kShiftAlt = 4;
} // namespace

FrmTChart::FrmTChart(RunContext& c, QWidget* parent)
    : QWidget(parent, Qt::Window | Qt::FramelessWindowHint | Qt::WindowStaysOnTopHint), ctx(c)
{
    setObjectName(QStringLiteral("FrmTChart"));
    setWindowTitle(QStringLiteral("FrmTChart"));
    setFocusPolicy(Qt::StrongFocus);
    setMouseTracking(true);
    TChart.onLoad = [this](::tallix::TChart& t) {
        t.setMouseTracking(true);
        connect(&t, &::tallix::TChart::OnKeyDown, this, &FrmTChart::OnKeyDown);
        connect(&t, &::tallix::TChart::OnMouseDown, this, &FrmTChart::OnMouseDown);
        connect(&t, &::tallix::TChart::OnMouseMove, this,
                [this](int i, int shift, int x, int y) { OnMouseMove(i, shift, x, y); });
        connect(&t, &::tallix::TChart::OnAfterDraw, this, &FrmTChart::OnAfterDraw);
        connect(&t, &::tallix::TChart::OnGetLegendText, this, &FrmTChart::OnGetLegendText, Qt::DirectConnection);
    };
    TChart.Load(0);

    auto timer = [this](int ms, bool on, std::function<void()> tick) {
        std::unique_ptr<IntervalTimer> t = ctx.clock->createTimer();
        t->setInterval(ms);
        t->onTick(std::move(tick));
        t->setEnabled(on);
        return t;
    };
    tmr_restart = timer(500, false, [this] {
        // Off before the key, whose DoEvents would otherwise let it tick again.
        tmr_restart->setEnabled(false);
        OnKeyDown(0, 'R', 0);
    });
    tmr_GotoMainSub = timer(20, false, [this] {
        tmr_GotoMainSub->setEnabled(false);
        if (gotoMainSub)
            gotoMainSub();
    });
    tmrHideCursor = timer(2000, true, [this] {
        setCursor(Qt::BlankCursor);
        for (int i = 0; i <= TChart.UBound(); ++i)
            if (TChart.Exists(i))
                TChart(i).setCursor(Qt::BlankCursor);
        tmrHideCursor->setEnabled(false);
    });
    tmrKeepFocus = timer(500, true, [this] {
        if (++keepFocusTicks > 1)
            tmrKeepFocus->setEnabled(false);
        if (isVisible() && isActiveWindow() && ctx.vType != 4 && ctx.GraphType != 7 && ctx.GraphType != 2)
            setFocus();
    });
    tmrDynamicChart = timer(10, false, [] {});
}

FrmTChart::~FrmTChart() = default;

void FrmTChart::Form_Load()
{
    Guarded(ctx, kModule, "Form_Load", false, 0, [&] {
        if (ctx.oPPT && ctx.oPPT->SlideShowWindowsCount() > 0)
            showRect = ctx.oPPT->SlideShowWindows(1)->Rect();
        if (showRect.isEmpty()) {
            // No show on view: the screen stands in for it.
            if (QScreen* s = QGuiApplication::primaryScreen())
                showRect = s->geometry();
        }
        if (showRect.isEmpty())
            showRect = QRect(0, 0, 1024, 768);
        host::PageSetup page{720, 540};
        if (ctx.oPres)
            page = ctx.oPres->GetPageSetup();
        // The slide fills the middle of the show window and black bars the rest: the window
        // lies over the slide's picture only, so a chart keeps the shape of its chart area.
        WindowRect picture{showRect.left(), showRect.top(), showRect.left() + showRect.width(),
                           showRect.top() + showRect.height()};
        if (AdjustSlideShowRECTforScreenRatio(picture, page.SlideWidth, page.SlideHeight))
            showRect = QRect(picture.Left, picture.Top, picture.Right - picture.Left, picture.Bottom - picture.Top);
        // Slide points per show pixel, each axis on its own.
        ctx.HeightRatio = page.SlideHeight / showRect.height();
        ctx.WidthRatio = page.SlideWidth / showRect.width();

        QRectF area(showRect);
        if (ctx.vArea.ubound() >= 0 && ctx.vArea(0).Width > 0 && ctx.vArea(0).Height > 0) {
            const VArea& v = ctx.vArea(0);
            area = QRectF(showRect.x() + v.Left * showRect.width(), showRect.y() + v.Top * showRect.height(),
                          v.Width * showRect.width(), v.Height * showRect.height());
        }
        int left = qRound(area.left()), top = qRound(area.top());
        int right = qRound(area.left() + area.width()), bottom = qRound(area.top() + area.height());
        left = std::max(left, showRect.left());
        top = std::max(top, showRect.top());
        right = std::min(right, showRect.left() + showRect.width());
        bottom = std::min(bottom, showRect.top() + showRect.height());
        if (right < left)
            right = left + qRound(area.width());
        setGeometry(left, top, std::max(1, right - left), std::max(1, bottom - top));
        TChart(0).Move(0, 0, width() * kTwipsPerPixel, height() * kTwipsPerPixel);
        if (ctx.GraphType == 7)
            TChart(0).Panel.MarginUnits = 1;
        return 0;
    });
}

void FrmTChart::Form_Unload()
{
    tmrHideCursor->setEnabled(false);
    tmrKeepFocus->setEnabled(false);
    tmrDynamicChart->setEnabled(false);
    if (isVisible())
        Fade(255, 0);
}

void FrmTChart::Fade(int from, int to)
{
    (void)from;
    alpha_ = std::clamp(to, 0, 255);
    setWindowOpacity(alpha_ / 255.0);
    if (alpha_ > 0 && !isVisible())
        show();
}

void FrmTChart::ShowMe()
{
    Fade(255, 255);
    show();
    raise();
}

void FrmTChart::ExternalRestart() { tmr_restart->setEnabled(true); }

void FrmTChart::cycleSeriesView()
{
    auto vis = [&](int i) { return TChart.Exists(i) && TChart(i).Visible(); };
    auto set = [&](int i, bool on) {
        if (TChart.Exists(i))
            TChart(i).SetVisible(on);
    };
    if (vis(0)) {
        set(0, false);
        set(1, true);
        if (vis(1))
            TChart(1).setFocus();
    } else if (vis(1)) {
        set(1, false);
        for (int i = 2; i <= TChart.UBound(); ++i)
            set(i, true);
        if (vis(2))
            TChart(2).setFocus();
    } else if (vis(2)) {
        for (int i = 1; i <= TChart.UBound(); ++i)
            set(i, false);
        set(0, true);
        TChart(0).setFocus();
    }
}

void FrmTChart::OnKeyDown(int chartIndex, int keyCode, int shift)
{
    Guarded(ctx, kModule, "TChart_OnKeyDown", false, 0, [&] {
        const int k = keyCode >= 'a' && keyCode <= 'z' ? keyCode - 32 : keyCode;
        auto giveFocus = [&] {
            if (TChart.Exists(chartIndex) && TChart(chartIndex).Visible() && isVisible())
                TChart(chartIndex).setFocus();
        };
        if (k == 'R' || k == 'P' || k == vkBack || k == vkLeft || k == vkUp || k == vkPrior) {
            if (ctx.forms)
                for (const QString& name : ctx.forms->LoadedForms())
                    if (name != FormName::comms && name != FormName::FrmTChart)
                        ctx.forms->Unload(name);
            ctx.pump->DoEvents();
            ctx.internalRestart = true;
            tmr_GotoMainSub->setEnabled(true);
        } else if (k == 'S') {
            const float now = float(ctx.clock->secondsSinceMidnight());
            // A held key must not race through the views.
            if (ctx.vType == 2 && now - lastSPress >= 0.25f) {
                lastSPress = now;
                cycleSeriesView();
            } else {
                lastSPress = now;
                giveFocus();
            }
        } else if ((k == 'Q' || k == 'G') && shift == kShiftCtrl) {
            pendingKey = short(k);
            pendingShift = short(shift);
        } else if (k == 'Q' || k == vkEscape) {
            pendingKey = short(k);
        } else if (ctx.GraphType == 7 && !(shift == kShiftAlt && k >= 'A' && k <= 'Z') && TChart(0).Visible() &&
                   !distributionLock) {
            // Any key takes a rating result from an item's spread back to every item; only
            // there, so the presenter's clicker still moves on from the overview.
            TChart(0).SetVisible(false);
            for (int i = 1; i <= TChart.UBound(); ++i)
                if (TChart.Exists(i))
                    TChart(i).SetVisible(true);
            overview = true;
        } else if (ctx.GraphType == 7 && shift == kShiftAlt && k >= 'A' && k <= 'Z' && !TChart(0).Visible()) {
            DisplayRatingDistribution(ctx, short(k - 'A' + 1));
            giveFocus();
        } else if (k == 'N' || k == vkSpace || k == vkRight || k == vkDown || k == vkNext) {
            pendingKey = short(k);
        } else {
            if (isActiveWindow())
                giveFocus();
        }
        return 0;
    });
}

void FrmTChart::Form_MouseDown(int button)
{
    if (button != 1)
        return;
    Guarded(ctx, kModule, "Form_MouseDown", false, 0, [&] {
        if (ctx.haveTick != 1 || tickShown) {
            RecordVoteEnd(ctx, QStringLiteral("Vote finished"));
            if (closeEverything)
                closeEverything();
            else if (ctx.comms && ctx.comms->tmrCloseEverything)
                ctx.comms->tmrCloseEverything->setEnabled(true);
            else
                FullShutDown(ctx);
        } else {
            DisplayTick(ctx);
            tickShown = true;
        }
        return 0;
    });
}

void FrmTChart::OnMouseDown(int chartIndex, int button, int /*shift*/, int /*x*/, int /*y*/)
{
    if (button == 2 && ctx.GraphType == 7 && chartIndex >= 1)
        DisplayRatingDistribution(ctx, short(chartIndex));
    else if (button == 2 && ctx.vType == 2)
        cycleSeriesView();
    if (button == 1)
        Form_MouseDown(1);
}

void FrmTChart::OnMouseMove(int chartIndex, int /*shift*/, double x, double y)
{
    if (ctx.GraphType != 7)
        return;
    if (!mouseSeen_) {
        mouseSeen_ = true;
        mouseX = x, mouseY = y;
        return;
    }
    // Slight hand tremor must not wake the pointer.
    if ((x - mouseX) * (x - mouseX) > 800 || (y - mouseY) * (y - mouseY) > 800) {
        unsetCursor();
        for (int i = 0; i <= TChart.UBound(); ++i)
            if (TChart.Exists(i)) {
                TChart(i).unsetCursor();
                if (chartIndex >= 0) {
                    TChart(i).Frame.Visible = i == chartIndex && ctx.GraphOutline.Visible;
                    TChart(i).Frame.Color = OleColor(ctx.GraphOutline.Colour);
                }
            }
        tmrHideCursor->setEnabled(true);
    }
}

void FrmTChart::OnGetLegendText(int /*chartIndex*/, int legendIndex, QString& text)
{
    // Only a reshow names its entries; a vote's legend keeps the option labels.
    if (ctx.arg1.compare(QLatin1String("TLXRESHOW"), Qt::CaseInsensitive) != 0)
        return;
    if (reshowLegend == 0) {
        text = legendIndex >= 0 && legendIndex <= ctx.Legends.ubound() ? ctx.Legends(legendIndex).Text
                                                                        : QStringLiteral("Live Votes");
        return;
    }
    text = FilterLegendText(legendIndex >= 0 && legendIndex < legendFilters.size() ? legendFilters[legendIndex] : QString(),
                            legendFiltersOr);
}

void FrmTChart::OnAfterDraw(int chartIndex)
{
    if (animating) {
        if (++animatingCounter > 1) {
            animating = false;
            Fade(0, 255);
        }
        return;
    }
    if (TChart.Exists(chartIndex) && TChart(chartIndex).isEnabled() && TChart(chartIndex).Visible() && isVisible() &&
        ctx.vType != 4)
        TChart(chartIndex).setFocus();
}

void FrmTChart::keyPressEvent(QKeyEvent* e)
{
    OnKeyDown(0, ::tallix::TChart::KeyCodeFor(e->key()), ::tallix::TChart::ShiftStateFor(e->modifiers()));
}

void FrmTChart::mousePressEvent(QMouseEvent* e)
{
    Form_MouseDown(e->button() == Qt::LeftButton ? 1 : e->button() == Qt::RightButton ? 2 : 4);
}

void FrmTChart::mouseMoveEvent(QMouseEvent* e) { OnMouseMove(-1, 0, e->position().x(), e->position().y()); }

} // namespace tallix
