// SPDX-License-Identifier: MIT
#include "desktop/DesktopRunLoop.h"

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <ctime>
#include <sys/epoll.h>
#include <sys/eventfd.h>
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

timespec toTimespec(std::chrono::nanoseconds duration)
{
    auto const seconds = std::chrono::floor<std::chrono::seconds>(duration);
    return { .tv_sec = seconds.count(), .tv_nsec = (duration - seconds).count() };
}

}

class DesktopRunLoop::DescriptorWatch final : public DesktopRunLoop::Watch {
public:
    DescriptorWatch(DesktopRunLoop& loop, int descriptor, std::uint32_t events)
        : loop_(loop)
        , descriptor_(descriptor)
    {
        control(EPOLL_CTL_ADD, events);
    }
    ~DescriptorWatch() override
    {
        control(EPOLL_CTL_DEL, 0);
        loop_.ready_.erase(descriptor_);
    }

    void setEvents(std::uint32_t events) override { control(EPOLL_CTL_MOD, events); }

private:
    void control(int operation, std::uint32_t events) const
    {
        epoll_event event { .events = events, .data = { .fd = descriptor_ } };
        ::epoll_ctl(loop_.epoll_.get(), operation, descriptor_, &event);
    }

    DesktopRunLoop& loop_;
    int descriptor_;
};

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
    ~WallClockTimer() override { loop_.remove(this); }

    platform::Date fireDate() const override { return fireDate_; }

    // The task may destroy the timer.
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
};

class DesktopRunLoop::MonotonicTimer final : public platform::Timer {
public:
    MonotonicTimer(DesktopRunLoop& loop, platform::Seconds delay, platform::Task task)
        : loop_(loop)
        , fireDate_(loop.now() + std::chrono::duration_cast<platform::Date::duration>(delay))
        , place_(loop.monotonicTimers_.emplace(loop.uptime() + delay, this))
        , task_(std::move(task))
    {
        loop_.setMonotonicAlarm();
    }
    ~MonotonicTimer() override { cancel(); }

    platform::Date fireDate() const override { return fireDate_; }

    // The task may destroy the timer.
    void fire()
    {
        auto const task = task_;
        cancel();
        task();
    }

private:
    void cancel()
    {
        if (!std::exchange(isScheduled_, false))
            return;
        loop_.monotonicTimers_.erase(place_);
        loop_.setMonotonicAlarm();
    }

    DesktopRunLoop& loop_;
    platform::Date fireDate_;
    MonotonicTimers::iterator place_;
    platform::Task task_;
    bool isScheduled_ = true;
};

DesktopRunLoop::DesktopRunLoop()
    : epoll_(::epoll_create1(EPOLL_CLOEXEC))
    , tasksEvent_(::eventfd(0, EFD_NONBLOCK | EFD_CLOEXEC | EFD_SEMAPHORE))
    , tasksWatch_(watch(tasksEvent_.get(), EPOLLIN, [this] { performNext(); }))
    , alarm_(::timerfd_create(CLOCK_REALTIME, TFD_NONBLOCK | TFD_CLOEXEC))
    , alarmWatch_(watch(alarm_.get(), EPOLLIN, [this] { wallClockReached(); }))
    , monotonicAlarm_(::timerfd_create(CLOCK_MONOTONIC, TFD_NONBLOCK | TFD_CLOEXEC))
    , monotonicAlarmWatch_(watch(monotonicAlarm_.get(), EPOLLIN, [this] { monotonicClockReached(); }))
    , sleepWatch_(read(CLOCK_BOOTTIME), read(CLOCK_MONOTONIC))
{
    setAlarm();
}

DesktopRunLoop::~DesktopRunLoop() = default;

int DesktopRunLoop::run()
{
    while (!exitStatus_ && !outer_)
        runNext(-1);
    if (!exitStatus_)
        outer_->run();
    return exitStatus_.value_or(EXIT_SUCCESS);
}

void DesktopRunLoop::quit(int status)
{
    exitStatus_ = status;
    if (outer_)
        outer_->quit();
}

std::unique_ptr<DesktopRunLoop::Watch> DesktopRunLoop::watch(int descriptor, std::uint32_t events, platform::Task ready)
{
    ready_[descriptor] = std::make_shared<platform::Task>(std::move(ready));
    return std::make_unique<DescriptorWatch>(*this, descriptor, events);
}

// Handles one event at a time, because its handler may remove the next one.
void DesktopRunLoop::runNext(int patience)
{
    epoll_event event {};
    int const count = ::epoll_wait(epoll_.get(), &event, 1, patience);
    // There was no free descriptor for epoll at the start.
    if (count < 0 && errno != EINTR)
        quit(EXIT_FAILURE);
    if (count < 1)
        return;
    auto const found = ready_.find(event.data.fd);
    if (found == ready_.end())
        return;
    // Held, because the task may destroy its own watch.
    auto const ready = found->second;
    (*ready)();
}

platform::Date DesktopRunLoop::now() const { return std::chrono::system_clock::now(); }

platform::Seconds DesktopRunLoop::uptime() const { return read(CLOCK_MONOTONIC); }

void DesktopRunLoop::perform(platform::Task task)
{
    {
        std::scoped_lock const lock(tasksMutex_);
        tasks_.push_back(std::move(task));
    }
    ::eventfd_write(tasksEvent_.get(), 1);
}

void DesktopRunLoop::performNext()
{
    eventfd_t one = 0;
    ::eventfd_read(tasksEvent_.get(), &one);
    std::unique_lock lock(tasksMutex_);
    if (tasks_.empty())
        return;
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
    return std::make_unique<MonotonicTimer>(*this, delay, std::move(task));
}

void DesktopRunLoop::performAfter(platform::Seconds delay, platform::Task task)
{
    auto const place = keptTimers_.emplace(keptTimers_.end());
    *place = after(delay, [this, place, task = std::move(task)] {
        auto const fired = task;
        keptTimers_.erase(place);
        fired();
    });
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

// The alarm is armed even without a timer, because only then does the kernel report wakes and clock changes.
void DesktopRunLoop::setAlarm()
{
    auto const* const next = nextWallClockTimer();
    platform::Date const due = next ? next->fireDate() : now() + 24h * 365;
    auto const sinceEpoch = std::max(due.time_since_epoch(), platform::Date::duration(1));
    itimerspec const alarm { .it_interval = {}, .it_value = toTimespec(sinceEpoch) };
    // The kernel reports a clock change only once, here or at the next read.
    if (timerfd_settime(alarm_.get(), TFD_TIMER_ABSTIME | TFD_TIMER_CANCEL_ON_SET, &alarm, nullptr) < 0
        && errno == ECANCELED)
        perform([this] { clockObservers_.notify(); });
}

void DesktopRunLoop::wallClockReached()
{
    std::uint64_t expirations = 0;
    bool const wasSet = ::read(alarm_.get(), &expirations, sizeof expirations) < 0 && errno == ECANCELED;
    noticeSleep();
    if (wasSet)
        clockObservers_.notify();
    auto const date = now();
    for (auto* due = nextWallClockTimer(); due && due->fireDate() <= date; due = nextWallClockTimer())
        due->fire(date);
    setAlarm();
}

void DesktopRunLoop::setMonotonicAlarm()
{
    itimerspec alarm {};
    // A time of zero would disarm the alarm, which is intended only if there is no timer.
    if (!monotonicTimers_.empty())
        alarm.it_value
            = toTimespec(std::max(std::chrono::ceil<std::chrono::nanoseconds>(monotonicTimers_.begin()->first), 1ns));
    ::timerfd_settime(monotonicAlarm_.get(), TFD_TIMER_ABSTIME, &alarm, nullptr);
}

// Fires one timer at a time, like everything else in the loop.
void DesktopRunLoop::monotonicClockReached()
{
    // Wake observers may destroy a timer that is due.
    noticeSleep();
    if (!monotonicTimers_.empty() && monotonicTimers_.begin()->first <= uptime())
        monotonicTimers_.begin()->second->fire();
}

void DesktopRunLoop::noticeSleep()
{
    if (sleepWatch_.noticesSleep(read(CLOCK_BOOTTIME), read(CLOCK_MONOTONIC)))
        wakeObservers_.notify();
}
