#include "event_pump.h"

#include "clock.h"

#include <QCoreApplication>
#include <QEventLoop>
#include <QTimer>

#include <stdexcept>

namespace tallix {

QtEventPump::QtEventPump() : wake_(std::make_unique<QTimer>())
{
    wake_->setSingleShot(true);
    wake_->setTimerType(Qt::PreciseTimer);
}

QtEventPump::~QtEventPump() = default;

void QtEventPump::DoEvents()
{
    QCoreApplication::processEvents(QEventLoop::AllEvents);
}

void QtEventPump::WaitForEvents(int maxMs)
{
    // The wake-up timer bounds the wait: the machine has two cores and the controller
    // runs beside us, so a wait loop must sleep in the event dispatcher, not spin.
    wake_->start(std::max(0, maxMs));
    QCoreApplication::processEvents(QEventLoop::AllEvents | QEventLoop::WaitForMoreEvents);
    wake_->stop();
}

void QtEventPump::Post(std::function<void()> work)
{
    QTimer::singleShot(0, QCoreApplication::instance(), std::move(work));
}

ManualEventPump::ManualEventPump(ManualClock& clock, qint64 maxPumps) : clock_(clock), maxPumps_(maxPumps) {}

void ManualEventPump::DoEvents()
{
    pump(doEventsStepMs_);
}

void ManualEventPump::WaitForEvents(int maxMs)
{
    pump(std::max(1, maxMs));
}

void ManualEventPump::pump(int ms)
{
    if (++pumps_ > maxPumps_)
        throw std::runtime_error("ManualEventPump: wait loop did not end");
    if (QCoreApplication::instance())
        QCoreApplication::processEvents(QEventLoop::AllEvents);
    RunPosted();
    clock_.advanceMs(ms);
    if (hook_)
        hook_();
}

} // namespace tallix

namespace tallix {

void ManualEventPump::RunPosted()
{
    // Posted work runs on this stack, so a test sees whatever it throws.
    while (!posted_.empty()) {
        auto work = std::move(posted_.front());
        posted_.erase(posted_.begin());
        work();
    }
}

} // namespace tallix
