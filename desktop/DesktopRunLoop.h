// SPDX-License-Identifier: MIT
#pragma once

#include "desktop/SleepWatch.h"
#include "platform/RunLoop.h"

#include <QObject>
#include <QSocketNotifier>

#include <deque>
#include <mutex>
#include <vector>

/// The main loop on Qt's event loop and Linux' clocks. One timerfd on the wall clock serves all wall-clock timers; the
/// kernel also reports through it that the clock was set or that the computer woke. Idle, it never wakes.
class DesktopRunLoop final : public platform::RunLoop {
public:
    DesktopRunLoop();
    ~DesktopRunLoop() override;

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
    class WallClockTimer;
    class EvenTimer;

    void performNext();
    void add(WallClockTimer* timer);
    void remove(WallClockTimer* timer);
    WallClockTimer* nextWallClockTimer() const;
    void setAlarm();
    void wallClockReached();
    void noticeSleep();

    std::mutex tasksMutex_;
    std::deque<platform::Task> tasks_;
    QObject context_;
    int alarm_;
    QSocketNotifier alarmNotifier_;
    SleepWatch sleepWatch_;
    platform::Observers<> wakeObservers_;
    platform::Observers<> clockObservers_;
    /// Not owned: a timer takes itself out when it goes.
    std::vector<WallClockTimer*> wallClockTimers_;
};
