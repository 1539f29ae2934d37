// SPDX-License-Identifier: MIT
#include "desktop/DesktopRunLoop.h"

#include <QTimer>

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <ctime>
#include <sys/timerfd.h>
#include <unistd.h>

namespace {

using namespace std::chrono_literals;

platform::Seconds read(clockid_t clock)
{
    timespec time {};
    clock_gettime(clock, &time);
    return std::chrono::seconds(time.tv_sec) + std::chrono::nanoseconds(time.tv_nsec);
}

std::chrono::milliseconds wholeMilliseconds(platform::Seconds duration)
{
    return std::chrono::ceil<std::chrono::milliseconds>(std::max(duration, platform::Seconds::zero()));
}

// A timer may go away while its own signal is being delivered.
struct DeleteLater {
    void operator()(QTimer* timer) const { timer->deleteLater(); }
};

}

class DesktopRunLoop::WallClockTimer final : public platform::Timer {
public:
    WallClockTimer(DesktopRunLoop& loop, platform::Date first, platform::Seconds period, platform::Task task)
        : loop_(loop)
        , fireDate_(first)
        , period_(std::max(std::chrono::duration_cast<platform::Date::duration>(period), platform::Date::duration(1)))
        , task_(std::move(task))
    {
        loop_.add(this);
    }
    ~WallClockTimer() override { cancel(); }

    platform::Date fireDate() const override { return fireDate_; }
    bool isValid() const override { return valid_; }
    void cancel() override
    {
        if (std::exchange(valid_, false))
            loop_.remove(this);
    }

    // The task may cancel the timer or take it away.
    void fire(platform::Date now)
    {
        auto const missed = (now - fireDate_) / period_;
        fireDate_ += (missed + 1) * period_;
        auto const task = task_;
        task();
    }

private:
    DesktopRunLoop& loop_;
    platform::Date fireDate_;
    platform::Date::duration period_;
    platform::Task task_;
    bool valid_ = true;
};

class DesktopRunLoop::EvenTimer final : public platform::Timer {
public:
    EvenTimer(DesktopRunLoop& loop, platform::Seconds delay, platform::Task task)
        : fireDate_(loop.now() + std::chrono::duration_cast<platform::Date::duration>(delay))
        , timer_(new QTimer)
    {
        timer_->setSingleShot(true);
        timer_->setTimerType(Qt::PreciseTimer);
        timer_->callOnTimeout([&loop, cancelled = cancelled_, task = std::move(task)] {
            // Those who are told of a wake may cancel what is due.
            loop.noticeSleep();
            auto const kept = task;
            if (!*cancelled)
                kept();
        });
        timer_->start(wholeMilliseconds(delay));
    }
    ~EvenTimer() override { *cancelled_ = true; }

    platform::Date fireDate() const override { return fireDate_; }
    bool isValid() const override { return timer_->isActive(); }
    void cancel() override
    {
        *cancelled_ = true;
        timer_->stop();
    }

private:
    platform::Date fireDate_;
    std::shared_ptr<bool> cancelled_ = std::make_shared<bool>(false);
    std::unique_ptr<QTimer, DeleteLater> timer_;
};

DesktopRunLoop::DesktopRunLoop()
    : alarm_(timerfd_create(CLOCK_REALTIME, TFD_NONBLOCK | TFD_CLOEXEC))
    , alarmNotifier_(alarm_, QSocketNotifier::Read)
    , sleepWatch_(read(CLOCK_BOOTTIME), read(CLOCK_MONOTONIC))
{
    QObject::connect(&alarmNotifier_, &QSocketNotifier::activated, &context_, [this] { wallClockReached(); });
    setAlarm();
}

DesktopRunLoop::~DesktopRunLoop()
{
    alarmNotifier_.setEnabled(false);
    close(alarm_);
}

platform::Date DesktopRunLoop::now() const { return std::chrono::system_clock::now(); }

platform::Seconds DesktopRunLoop::uptime() const { return read(CLOCK_MONOTONIC); }

void DesktopRunLoop::perform(platform::Task task)
{
    // The toolkit's own queue would do, but the thread sanitizer does not see that it orders anything.
    {
        std::scoped_lock const lock(tasksMutex_);
        tasks_.push_back(std::move(task));
    }
    QMetaObject::invokeMethod(&context_, [this] { performNext(); }, Qt::QueuedConnection);
}

void DesktopRunLoop::performNext()
{
    std::unique_lock lock(tasksMutex_);
    auto const task = std::move(tasks_.front());
    tasks_.pop_front();
    lock.unlock();
    task();
}

std::unique_ptr<platform::Timer> DesktopRunLoop::repeat(
    platform::Date first, platform::Seconds period, platform::Task task)
{
    return std::make_unique<WallClockTimer>(*this, first, period, std::move(task));
}

std::unique_ptr<platform::Timer> DesktopRunLoop::after(platform::Seconds delay, platform::Task task)
{
    return std::make_unique<EvenTimer>(*this, delay, std::move(task));
}

void DesktopRunLoop::performAfter(platform::Seconds delay, platform::Task task)
{
    QTimer::singleShot(wholeMilliseconds(delay), Qt::PreciseTimer, &context_, std::move(task));
}

platform::Subscription DesktopRunLoop::observeWake(platform::Task observer)
{
    return wakeObservers_.add(std::move(observer));
}

platform::Subscription DesktopRunLoop::observeClockChange(platform::Task observer)
{
    return clockObservers_.add(std::move(observer));
}

void DesktopRunLoop::add(WallClockTimer* timer)
{
    wallClockTimers_.push_back(timer);
    setAlarm();
}

void DesktopRunLoop::remove(WallClockTimer* timer)
{
    std::erase(wallClockTimers_, timer);
    setAlarm();
}

DesktopRunLoop::WallClockTimer* DesktopRunLoop::nextWallClockTimer() const
{
    auto const next = std::ranges::min_element(wallClockTimers_, {}, &WallClockTimer::fireDate);
    return next == wallClockTimers_.end() ? nullptr : *next;
}

// The alarm is set even when no timer waits for it: only then does the kernel tell of a wake or of a clock being set.
void DesktopRunLoop::setAlarm()
{
    auto const* const next = nextWallClockTimer();
    platform::Date const due = next ? next->fireDate() : now() + 24h * 365;
    auto const sinceEpoch = std::max(due.time_since_epoch(), platform::Date::duration(1));
    auto const seconds = std::chrono::floor<std::chrono::seconds>(sinceEpoch);
    itimerspec alarm {};
    alarm.it_value.tv_sec = seconds.count();
    alarm.it_value.tv_nsec = std::chrono::nanoseconds(sinceEpoch - seconds).count();
    // The kernel tells only once, here or at the next read, that the clock was set.
    if (timerfd_settime(alarm_, TFD_TIMER_ABSTIME | TFD_TIMER_CANCEL_ON_SET, &alarm, nullptr) < 0 && errno == ECANCELED)
        perform([this] { clockObservers_.tell(); });
}

void DesktopRunLoop::wallClockReached()
{
    std::uint64_t expirations = 0;
    bool const wasSet = ::read(alarm_, &expirations, sizeof expirations) < 0 && errno == ECANCELED;
    noticeSleep();
    if (wasSet)
        clockObservers_.tell();
    auto const date = now();
    for (auto* due = nextWallClockTimer(); due && due->fireDate() <= date; due = nextWallClockTimer())
        due->fire(date);
    setAlarm();
}

void DesktopRunLoop::noticeSleep()
{
    if (sleepWatch_.noticesSleep(read(CLOCK_BOOTTIME), read(CLOCK_MONOTONIC)))
        wakeObservers_.tell();
}
