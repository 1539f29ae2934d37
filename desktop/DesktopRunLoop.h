// SPDX-License-Identifier: MIT
#pragma once

#include "desktop/SleepWatch.h"
#include "platform/Descriptor.h"
#include "platform/RunLoop.h"

#include <cstdint>
#include <deque>
#include <list>
#include <map>
#include <mutex>
#include <optional>
#include <unordered_map>
#include <vector>

/// A loop around the main loop, such as a toolkit's: it runs what is due in the main loop beside its own events.
class OuterLoop {
public:
    virtual ~OuterLoop() = default;

    /// Runs until it is told to quit.
    virtual void run() = 0;
    virtual void quit() = 0;
};

/// The main loop on epoll and Linux' clocks. One timerfd on each clock serves all its timers; through that of the wall
/// clock the kernel also reports that the clock was set or that the computer woke. Idle, it never wakes.
class DesktopRunLoop final : public platform::RunLoop {
public:
    /// Follows a descriptor until it goes, which is before the descriptor is closed.
    class Watch {
    public:
        virtual ~Watch() = default;
        /// What to wait for from now on, as epoll has it: EPOLLIN, EPOLLOUT.
        virtual void setEvents(std::uint32_t events) = 0;
    };

    DesktopRunLoop();
    ~DesktopRunLoop() override;

    /// Runs until quit(), within the outer loop once there is one. Returns the exit status.
    int run();
    void quit(int status);
    /// Has another loop run in place of this one from the end of the present turn on.
    void setOuter(OuterLoop& outer) { outer_ = &outer; }
    bool hasOuter() const { return outer_ != nullptr; }

    /// Readable while something is due: what an outer loop waits for.
    int descriptor() const { return epoll_.get(); }
    /// Runs one thing that is due, if there is one.
    void runDue() { runNext(0); }

    /// Runs a task whenever a descriptor is ready, also for its end or an error.
    std::unique_ptr<Watch> watch(int descriptor, std::uint32_t events, platform::Task ready);

    platform::Date now() const override;
    platform::Seconds uptime() const override;
    void perform(platform::Task task) override;
    std::unique_ptr<platform::Timer> repeat(
        platform::Date first, platform::Seconds period, platform::Task task) override;
    std::unique_ptr<platform::Timer> after(platform::Seconds delay, platform::Task task) override;
    void performAfter(platform::Seconds delay, platform::Task task) override;
    platform::Subscription observeWake(platform::Task observer) override;
    platform::Subscription observeClockChange(platform::Task observer) override;

private:
    class DescriptorWatch;
    class WallClockTimer;
    class MonotonicTimer;
    /// By the time since the computer started, sleep not counted. Not owned: a timer takes itself out when it goes.
    using MonotonicTimers = std::multimap<platform::Seconds, MonotonicTimer*>;

    /// Waits so many milliseconds at most; for ever if that is negative.
    void runNext(int patience);
    void performNext();
    void add(WallClockTimer* timer);
    void remove(WallClockTimer* timer);
    WallClockTimer* nextWallClockTimer() const;
    void setAlarm();
    void wallClockReached();
    void setEvenAlarm();
    void evenClockReached();
    void noticeSleep();

    platform::Descriptor epoll_;
    std::unordered_map<int, std::shared_ptr<platform::Task>> ready_;
    OuterLoop* outer_ = nullptr;
    std::optional<int> exitStatus_;
    std::mutex tasksMutex_;
    std::deque<platform::Task> tasks_;
    /// Counts the tasks.
    platform::Descriptor tasksEvent_;
    std::unique_ptr<Watch> tasksWatch_;
    platform::Descriptor alarm_;
    std::unique_ptr<Watch> alarmWatch_;
    platform::Descriptor evenAlarm_;
    std::unique_ptr<Watch> evenAlarmWatch_;
    SleepWatch sleepWatch_;
    platform::Observers<> wakeObservers_;
    platform::Observers<> clockObservers_;
    /// Not owned: a timer takes itself out when it goes.
    std::vector<WallClockTimer*> wallClockTimers_;
    MonotonicTimers monotonicTimers_;
    /// Those that nobody else keeps.
    std::list<std::unique_ptr<platform::Timer>> keptTimers_;
};
