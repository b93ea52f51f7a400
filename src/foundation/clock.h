#pragma once
// Time as the system sees it: seconds since midnight (the runtime's Timer), the time of
// day, a performance counter, and interval timers. Everything that waits or ticks goes
// through a Clock so that tests can run a 30-second count-down in microseconds.

#include <QDateTime>
#include <QtGlobal>

#include <functional>
#include <memory>
#include <vector>

namespace tallix {

// A repeating timer in the manner of a form's timer control: an interval in
// milliseconds, an enabled flag, and one tick handler. Re-enabling restarts the interval.
class IntervalTimer {
public:
    virtual ~IntervalTimer() = default;
    virtual void setInterval(int ms) = 0;
    virtual int interval() const = 0;
    virtual void setEnabled(bool on) = 0;
    virtual bool enabled() const = 0;
    void onTick(std::function<void()> handler) { handler_ = std::move(handler); }

protected:
    void tick()
    {
        if (handler_)
            handler_();
    }

private:
    std::function<void()> handler_;
};

class Clock {
public:
    virtual ~Clock() = default;
    // The runtime's Timer: seconds since midnight, with a fraction.
    virtual double secondsSinceMidnight() const = 0;
    virtual QDateTime now() const = 0;
    // 0 from perfFrequency() means the counter is not available.
    virtual qint64 perfCounter() const = 0;
    virtual qint64 perfFrequency() const = 0;
    virtual std::unique_ptr<IntervalTimer> createTimer() = 0;
};

// The machine's clock, with timers on the Qt event loop.
class SystemClock final : public Clock {
public:
    double secondsSinceMidnight() const override;
    QDateTime now() const override;
    qint64 perfCounter() const override;
    qint64 perfFrequency() const override;
    std::unique_ptr<IntervalTimer> createTimer() override;
};

// A clock that moves only when told. Its timers fire inside advance(), in time order,
// each as often as its interval fits, exactly as they would have on the machine.
class ManualClock final : public Clock {
public:
    explicit ManualClock(QDateTime start = QDateTime(QDate(2026, 11, 16), QTime(9, 0)));
    ~ManualClock() override;

    double secondsSinceMidnight() const override;
    QDateTime now() const override;
    qint64 perfCounter() const override;
    qint64 perfFrequency() const override;
    std::unique_ptr<IntervalTimer> createTimer() override;

    void advanceMs(qint64 ms);
    void advanceSeconds(double s) { advanceMs(qRound64(s * 1000.0)); }
    void setNow(const QDateTime& t);
    // Makes perfFrequency() report failure, as a machine without a counter does.
    void setCounterAvailable(bool available) { counterAvailable_ = available; }
    qint64 elapsedMs() const { return elapsedMs_; }

private:
    class Timer;
    friend class Timer;
    QDateTime start_;
    qint64 elapsedMs_ = 0;
    bool counterAvailable_ = true;
    std::vector<Timer*> timers_;
};

} // namespace tallix
