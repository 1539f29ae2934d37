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

/// An event loop that wraps the main loop, such as a toolkit's, and runs what is due in it.
class OuterLoop {
public:
    virtual ~OuterLoop() = default;

    /// Runs until quit() is called.
    virtual void run() = 0;
    virtual void quit() = 0;
};

/// The main loop, based on epoll and Linux clocks. One timerfd per clock serves all its timers; the one for the wall
/// clock also reports clock changes and wakes from sleep. It never wakes up while idle.
class DesktopRunLoop final : public platform::RunLoop {
public:
    /// Watches a descriptor until destroyed. Destroy it before closing the descriptor.
    class Watch {
    public:
        virtual ~Watch() = default;
        /// Sets the epoll events to wait for, EPOLLIN or EPOLLOUT.
        virtual void setEvents(std::uint32_t events) = 0;
    };

    DesktopRunLoop();
    ~DesktopRunLoop() override;

    /// Runs until quit(), within the outer loop if there is one. Returns the exit status.
    int run();
    void quit(int status);
    /// Lets another loop take over at the end of the current turn.
    void setOuter(OuterLoop& outer) { outer_ = &outer; }
    bool hasOuter() const { return outer_ != nullptr; }

    /// Readable while something is due. An outer loop waits for it.
    int descriptor() const { return epoll_.get(); }
    /// Runs one due task or event, if any.
    void runDue() { runNext(0); }

    /// Runs a task whenever a descriptor is ready, including on hang-up and errors.
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
    /// Keyed by the time since boot without sleep. Not owned: timers remove themselves on destruction.
    using MonotonicTimers = std::multimap<platform::Seconds, MonotonicTimer*>;

    /// Waits at most this many milliseconds, or without limit if negative.
    void runNext(int patience);
    void performNext();
    void add(WallClockTimer* timer);
    void remove(WallClockTimer* timer);
    WallClockTimer* nextWallClockTimer() const;
    void setAlarm();
    void wallClockReached();
    void setMonotonicAlarm();
    void monotonicClockReached();
    void noticeSleep();

    platform::Descriptor epoll_;
    std::unordered_map<int, std::shared_ptr<platform::Task>> ready_;
    OuterLoop* outer_ = nullptr;
    std::optional<int> exitStatus_;
    std::mutex tasksMutex_;
    std::deque<platform::Task> tasks_;
    /// Counts the queued tasks.
    platform::Descriptor tasksEvent_;
    std::unique_ptr<Watch> tasksWatch_;
    platform::Descriptor alarm_;
    std::unique_ptr<Watch> alarmWatch_;
    platform::Descriptor monotonicAlarm_;
    std::unique_ptr<Watch> monotonicAlarmWatch_;
    SleepWatch sleepWatch_;
    platform::Observers<> wakeObservers_;
    platform::Observers<> clockObservers_;
    /// Not owned: timers remove themselves on destruction.
    std::vector<WallClockTimer*> wallClockTimers_;
    MonotonicTimers monotonicTimers_;
    /// Timers that only the loop owns.
    std::list<std::unique_ptr<platform::Timer>> keptTimers_;
};
