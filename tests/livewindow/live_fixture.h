#pragma once
// A live vote in-process: comms over a recording link, a memory deck with a running
// show, the votes-cast behaviour over a fake view, and forms loaded by name.

#include "charts/chart_procedures.h"
#include "controller/comms.h"
#include "controller/controller_link.h"
#include "host/deck_host.h"
#include "livewindow/vcast.h"
#include "livewindow/votes_cast_view.h"
#include "results/common_io.h"
#include "support/test_context.h"
#include "vote/forms.h"

#include <gtest/gtest.h>

#include <map>

namespace tallix::testing {

class FakeView final : public VotesCastView {
public:
    void setCounter(const QString& c, int s) override { counter = c, counterSize = s; }
    void setCounterVisible(bool on) override { counterVisible = on; }
    // Ten pixels a character a point over 10: enough to make fitting bite.
    int counterTextWidth(const QString& c, int s) const override { return int(c.size() * s); }
    void setCaption(const QString& t, int s) override { caption = t, captionSize = s; }
    int captionTextWidth(const QString& t, int s) const override { return int(t.size() * s / 2); }
    void setCaptionVisible(bool on) override { captionVisible = on; }
    void setBar(int w, bool v) override { barTwips = w, barVisible = v; }
    void setProgress(int m, int v, bool on) override { progressMax = m, progress = v, progressVisible = on; }
    int indicatorCount() const override { return 3; }
    qint32 indicatorColour(int i) const override { return colours.count(i) ? colours.at(i) : 0; }
    void setIndicatorColour(int i, qint32 c) override { colours[i] = c; }
    void setIndicatorVisible(int, bool) override {}
    void setIndicatorsTop(int) override {}
    void setPausedVisible(bool on) override { paused = on; }
    void setBusy(bool on) override { busy = on; }
    void setKeypadText(const QString&) override {}
    bool applySkin(const QString&) override { return false; }
    WindowRect windowRect() const override { return rect; }
    void setWindowRect(const WindowRect& r) override { rect = r; }
    void showWindow() override { visible = true; }
    void hideWindow() override { visible = false; }
    bool isWindowVisible() const override { return visible; }
    void setOpacity(double o) override { opacity = o; }
    void raiseAndFocus() override {}

    QString counter, caption;
    int counterSize = 0, captionSize = 0, barTwips = 0, progressMax = 0, progress = 0;
    bool progressVisible = false;
    bool counterVisible = false, captionVisible = false, barVisible = false, paused = false, busy = false;
    bool visible = false;
    double opacity = 1;
    std::map<int, qint32> colours;
    WindowRect rect{0, 0, 220, 132};
};

// Unloaded forms are kept until the test ends, as the program deletes them later.
class FakeForms final : public FormManager {
public:
    explicit FakeForms(RunContext& ctx) : ctx_(ctx) {}
    bool IsLoaded(const QString& n) const override { return order_.contains(n); }
    void Load(const QString& n) override
    {
        if (IsLoaded(n))
            return;
        order_ << n;
        if (n == FormName::vCast) {
            views_.push_back(std::make_unique<FakeView>());
            forms_.push_back(std::make_unique<vCastForm>(ctx_, *views_.back()));
            ctx_.vCast = forms_.back().get();
            forms_.back()->Form_Load();
        }
    }
    void Unload(const QString& n) override
    {
        if (!order_.removeOne(n))
            return;
        ++unloads[n];
        if (n == FormName::vCast) {
            forms_.back()->Form_Unload();
            ctx_.vCast = nullptr;
        }
    }
    QStringList LoadedForms() const override { return order_; }
    void ShowHelp() override { ++helpShown; }

    vCastForm& vcast() { return *forms_.back(); }
    FakeView& view() { return *views_.back(); }
    std::map<QString, int> unloads;
    int helpShown = 0;

private:
    RunContext& ctx_;
    QStringList order_;
    std::vector<std::unique_ptr<FakeView>> views_;
    std::vector<std::unique_ptr<vCastForm>> forms_;
};

class RecordingCharts final : public ChartProcedures {
public:
    void DisplayChart(DisplayChartArgs&) override { ++charts; }
    void DisplayMultiChart(short, short, bool) override { ++charts; }
    void DisplayTick() override {}
    void DrawDynamicChart() override {}
    void GrabBackground(const char*) override {}
    int charts = 0;
};

class RecordingResult final : public ResultForm {
public:
    void GraphtoSlide(short elements) override { placed.push_back(elements); }
    // The presenter moves on at once once the picture is on the slide, unless a test
    // makes them wait.
    short PendingKey() const override { return key; }
    std::vector<short> placed;
    short key = ' ';
};

class LiveVoteTest : public ::testing::Test {
protected:
    TestRun run;
    RunContext& ctx = run.ctx;
    host::MemoryHost ppt{3, showConfig()};
    RecordingControllerLink link;
    Comms comms{ctx, link};
    FakeForms forms{ctx};
    RecordingCharts charts;
    RecordingResult result;
    int exits = 0;
    int commits = 0;

    static host::HostConfig showConfig()
    {
        host::HostConfig c;
        c.showRunning = true;
        c.showSlide = 2;
        c.showWindowRect = QRect(0, 0, 1920, 1080);
        return c;
    }

    LiveVoteTest()
    {
        ctx.oPPT = &ppt;
        ctx.oPres = ppt.ActivePresentation();
        ctx.comms = &comms;
        ctx.forms = &forms;
        ctx.chartProcedures = &charts;
        ctx.FrmTChart = &result;
        ctx.CommitPresentation = [this] { ++commits; };
        ctx.terminator = [this](int code) {
            ++exits;
            throw ProcessExit{code};
        };
        ctx.currentSlide = 2;
        ctx.keypadUniverse = 10;
        ctx.maxKeypads = 10;
        ctx.optionCount = 4;
        ctx.startFrom = 1;
        ctx.controllerVoteType = "9";
        ctx.BaseType = "KBOARD";
        ResetVoteArrays(ctx);
        ctx.participants.redim(ctx.keypadUniverse);
        forms.Load(FormName::comms);
        forms.Load(FormName::vCast);
    }

    vCastForm& vcast() { return forms.vcast(); }
    FakeView& view() { return forms.view(); }
    QString vote(int keypad) const { return ctx.votes(keypad - 1); }
    bool sent(const QString& text) const { return link.sent.contains(text); }

    // Runs `body` until the process would end; true if it did.
    template <class F>
    bool endsProcess(F&& body)
    {
        try {
            body();
        } catch (const ProcessExit&) {
            return true;
        }
        return false;
    }
};

} // namespace tallix::testing
