#pragma once
// DoEvents and the yield of every wait loop. The program pumps the Qt event loop; tests
// pump a ManualClock forward so that waits end deterministically and instantly.

#include <QtGlobal>

#include <functional>
#include <memory>
#include <vector>

class QTimer;

namespace tallix {

class ManualClock;

class EventPump {
public:
    virtual ~EventPump() = default;
    // Process what is pending now, once; never blocks.
    virtual void DoEvents() = 0;
    // Inside a wait loop: block for the next event, at most maxMs, instead of spinning.
    virtual void WaitForEvents(int maxMs) = 0;
    // Runs `work` at a later pump, outside the caller's stack: how text that arrives on
    // a socket reaches the decoder without running inside the socket's signal.
    virtual void Post(std::function<void()> work) = 0;
};

class QtEventPump final : public EventPump {
public:
    QtEventPump();
    ~QtEventPump() override;
    void DoEvents() override;
    void WaitForEvents(int maxMs) override;
    void Post(std::function<void()> work) override;

private:
    std::unique_ptr<QTimer> wake_;
};

// For tests: each pump first delivers pending Qt events, then moves the clock on (by
// maxMs for a wait, by doEventsStepMs for DoEvents), firing its timers, then calls the
// hook, which a test uses to press keys or deliver votes at chosen moments.
// Throws std::runtime_error after maxPumps, so a wait that would never end fails the test.
class ManualEventPump final : public EventPump {
public:
    explicit ManualEventPump(ManualClock& clock, qint64 maxPumps = 10'000'000);
    void DoEvents() override;
    void WaitForEvents(int maxMs) override;
    void Post(std::function<void()> work) override { posted_.push_back(std::move(work)); }
    // Runs what was posted, as a pump would, without moving the clock.
    void RunPosted();

    void setDoEventsStepMs(int ms) { doEventsStepMs_ = ms; }
    void setHook(std::function<void()> hook) { hook_ = std::move(hook); }
    qint64 pumps() const { return pumps_; }

private:
    void pump(int ms);
    ManualClock& clock_;
    qint64 maxPumps_;
    qint64 pumps_ = 0;
    int doEventsStepMs_ = 1;
    std::function<void()> hook_;
    std::vector<std::function<void()>> posted_;
};

} // namespace tallix
