// SPDX-License-Identifier: MIT
#pragma once

#include "platform/Date.h"
#include "platform/Property.h"

#include <chrono>
#include <functional>
#include <memory>

namespace platform {

using Task = std::function<void()>;
using Seconds = std::chrono::duration<double>;

/// Runs its task at its fire date until it is destroyed, which the task may do. Main thread only.
class Timer {
public:
    virtual ~Timer() = default;

    /// The next fire date, or that of a one-shot timer that has fired.
    virtual Date fireDate() const = 0;
};

/// The main loop with its clocks. The clocks and perform() are thread-safe; the rest is for the main thread only.
class RunLoop {
public:
    virtual ~RunLoop() = default;

    virtual Date now() const = 0;
    /// The time of a monotonic clock, which pauses while the computer sleeps.
    virtual Seconds uptime() const = 0;

    /// Queues a task; tasks run in the order they were queued.
    virtual void perform(Task task) = 0;

    /// Schedules a repeating timer on the wall clock, due when the clock says so, regardless of sleep and of changes to
    /// the clock. A first date in the past fires at once. The period must be positive.
    virtual std::unique_ptr<Timer> repeat(Date first, Seconds period, Task task) = 0;
    /// Schedules a one-shot timer on the monotonic clock.
    virtual std::unique_ptr<Timer> after(Seconds delay, Task task) = 0;
    /// The same, but the loop owns the timer, which nobody else can end.
    virtual void performAfter(Seconds delay, Task task) = 0;

    /// Calls the observer when the computer wakes, before any timer that fell due during sleep fires.
    virtual Subscription observeWake(Task observer) = 0;

    /// Calls the observer when the wall clock has been set, before any timer that this made due fires.
    virtual Subscription observeClockChange(Task observer) = 0;
};

}
