// SPDX-License-Identifier: MIT
#pragma once

#include "platform/RunLoop.h"

#include <deque>
#include <memory>
#include <vector>

/// The main loop in virtual time, on one thread: nothing happens until a test says so.
class ManualRunLoop final : public platform::RunLoop {
public:
    explicit ManualRunLoop(platform::Date now);

    platform::Date now() const override { return now_; }
    platform::Seconds uptime() const override { return now_ - uptimeStart_; }
    void perform(platform::Task task) override { queued_.push_back(std::move(task)); }
    std::unique_ptr<platform::Timer> repeat(
        platform::Date first, platform::Seconds period, platform::Task task) override;
    std::unique_ptr<platform::Timer> after(platform::Seconds delay, platform::Task task) override;
    void performAfter(platform::Seconds delay, platform::Task task) override;
    platform::Subscription observeWake(platform::Task task) override { return wake_.add(std::move(task)); }
    platform::Subscription observeClockChange(platform::Task task) override { return clock_.add(std::move(task)); }

    /// Runs the queued tasks, and those that they queue, until there are none.
    void runQueued();
    /// Lets time pass: the clocks jump from timer to timer, and what each one queues runs before the next.
    void advance(platform::Seconds duration);
    /// The computer sleeps: the wall clock moves and the even one does not. Wake observers run first, then what is due.
    void sleep(platform::Seconds duration) { jump(duration, wake_); }
    /// Somebody puts the clock forward, or back. Who wants to know is told first, then what is due fires.
    void setClock(platform::Seconds forward) { jump(forward, clock_); }
    /// How many timers are armed.
    std::size_t timers() const;

private:
    struct Scheduled;
    class Handle;

    void jump(platform::Seconds forward, platform::Observers<>& told);
    platform::Date dateAfter(platform::Seconds delay) const;
    std::shared_ptr<Scheduled> schedule(platform::Date date, platform::Seconds period, platform::Task task);
    bool fireNext(platform::Date end);

    platform::Date now_;
    platform::Date uptimeStart_ = now_;
    std::vector<std::shared_ptr<Scheduled>> timers_;
    platform::Observers<> wake_;
    platform::Observers<> clock_;
    std::deque<platform::Task> queued_;
};
