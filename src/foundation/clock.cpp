#include "clock.h"

#include <QElapsedTimer>
#include <QTimer>

#include <algorithm>
#include <chrono>

namespace tallix {

namespace {

class QtIntervalTimer final : public IntervalTimer {
public:
    QtIntervalTimer()
    {
        timer_.setTimerType(Qt::PreciseTimer);
        QObject::connect(&timer_, &QTimer::timeout, [this] { tick(); });
    }
    void setInterval(int ms) override { timer_.setInterval(ms); }
    int interval() const override { return timer_.interval(); }
    void setEnabled(bool on) override
    {
        if (on)
            timer_.start();
        else
            timer_.stop();
    }
    bool enabled() const override { return timer_.isActive(); }

private:
    QTimer timer_;
};

} // namespace

double SystemClock::secondsSinceMidnight() const
{
    return QTime::currentTime().msecsSinceStartOfDay() / 1000.0;
}

QDateTime SystemClock::now() const
{
    return QDateTime::currentDateTime();
}

qint64 SystemClock::perfCounter() const
{
    return std::chrono::steady_clock::now().time_since_epoch().count();
}

qint64 SystemClock::perfFrequency() const
{
    using period = std::chrono::steady_clock::period;
    return period::den / period::num;
}

std::unique_ptr<IntervalTimer> SystemClock::createTimer()
{
    return std::make_unique<QtIntervalTimer>();
}

class ManualClock::Timer final : public IntervalTimer {
public:
    explicit Timer(ManualClock* clock) : clock_(clock) { clock_->timers_.push_back(this); }
    ~Timer() override
    {
        if (clock_)
            std::erase(clock_->timers_, this);
    }
    void setInterval(int ms) override
    {
        interval_ = ms;
        if (enabled_)
            due_ = clock_->elapsedMs_ + std::max(1, interval_);
    }
    int interval() const override { return interval_; }
    void setEnabled(bool on) override
    {
        if (on && clock_)
            due_ = clock_->elapsedMs_ + std::max(1, interval_);
        enabled_ = on;
    }
    bool enabled() const override { return enabled_; }

    ManualClock* clock_;
    int interval_ = 0;
    bool enabled_ = false;
    qint64 due_ = 0;

    void fire()
    {
        due_ += std::max(1, interval_);
        tick();
    }
};

ManualClock::ManualClock(QDateTime start) : start_(std::move(start)) {}

ManualClock::~ManualClock()
{
    for (Timer* t : timers_)
        t->clock_ = nullptr;
}

double ManualClock::secondsSinceMidnight() const
{
    return now().time().msecsSinceStartOfDay() / 1000.0;
}

QDateTime ManualClock::now() const
{
    return start_.addMSecs(elapsedMs_);
}

qint64 ManualClock::perfCounter() const
{
    return elapsedMs_ * 1000; // microsecond ticks
}

qint64 ManualClock::perfFrequency() const
{
    return counterAvailable_ ? 1000000 : 0;
}

std::unique_ptr<IntervalTimer> ManualClock::createTimer()
{
    return std::make_unique<Timer>(this);
}

void ManualClock::advanceMs(qint64 ms)
{
    const qint64 target = elapsedMs_ + ms;
    for (;;) {
        // The earliest due timer fires next; handlers may enable, disable or delete timers.
        Timer* next = nullptr;
        for (Timer* t : timers_)
            if (t->enabled_ && t->due_ <= target && (!next || t->due_ < next->due_))
                next = t;
        if (!next)
            break;
        elapsedMs_ = std::max(elapsedMs_, next->due_);
        next->fire();
    }
    // A handler that pumped has advanced the clock already; time never runs back.
    elapsedMs_ = std::max(elapsedMs_, target);
}

void ManualClock::setNow(const QDateTime& t)
{
    start_ = t.addMSecs(-elapsedMs_);
}

} // namespace tallix
