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

/// Calls its task at its fire date until it is cancelled or goes away. Main thread only.
class Timer {
public:
    virtual ~Timer() = default;

    /// The next firing; the last one once the timer is no longer valid.
    virtual Date fireDate() const = 0;
    /// From being scheduled until cancelled; a one-shot timer also ends by firing.
    virtual bool isValid() const = 0;
    virtual void cancel() = 0;
};

/// The main loop with its clocks. The clocks and perform() may be used from any thread, the rest from the main one.
class RunLoop {
public:
    virtual ~RunLoop() = default;

    virtual Date now() const = 0;
    /// Time that runs evenly and never jumps; it stands still while the computer sleeps.
    virtual Seconds uptime() const = 0;

    /// Queues a task; tasks run in the order they were queued.
    virtual void perform(Task task) = 0;

    /// A repeating timer on the wall clock: it is due when the clock says so, however long the computer slept and
    /// however the clock was set. A first date that is over fires at once. The period must be positive.
    virtual std::unique_ptr<Timer> repeat(Date first, Seconds period, Task task) = 0;
    /// A one-shot timer on the monotonic clock.
    virtual std::unique_ptr<Timer> after(Seconds delay, Task task) = 0;
    /// The same, kept by the loop: it cannot be cancelled.
    virtual void performAfter(Seconds delay, Task task) = 0;

    /// Tells when the computer woke from sleep, before any timer that fell due meanwhile fires.
    virtual Subscription observeWake(Task observer) = 0;

    /// Tells when the wall clock was set, before any timer that is due by it fires.
    virtual Subscription observeClockChange(Task observer) = 0;
};

}
