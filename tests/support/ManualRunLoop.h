// SPDX-License-Identifier: MIT
#pragma once

#include "platform/RunLoop.h"

#include <algorithm>
#include <deque>
#include <memory>
#include <vector>

/// The main loop in virtual time, on one thread: nothing happens until a test says so.
class ManualRunLoop final : public platform::RunLoop {
    using Date = platform::Date;
    using Seconds = platform::Seconds;
    using Task = platform::Task;
    using Timer = platform::Timer;

public:
    explicit ManualRunLoop(Date now)
        : now_(now)
    {
    }

    Date now() const override { return now_; }
    Seconds uptime() const override { return now_ - uptimeStart_; }
    void perform(Task task) override { queued_.push_back(std::move(task)); }
    std::unique_ptr<Timer> repeat(Date first, Seconds period, Task task) override
    {
        return std::make_unique<Scheduled>(*this, first, period, std::move(task));
    }
    std::unique_ptr<Timer> after(Seconds delay, Task task) override
    {
        return repeat(dateAfter(delay), {}, std::move(task));
    }
    void performAfter(Seconds delay, Task task) override { kept_.push_back(after(delay, std::move(task))); }
    platform::Subscription observeWake(Task task) override { return wake_.add(std::move(task)); }
    platform::Subscription observeClockChange(Task task) override { return clock_.add(std::move(task)); }

    /// Runs the queued tasks, and those that they queue, until there are none.
    void runQueued()
    {
        for (; !queued_.empty(); queued_.pop_front())
            queued_.front()();
    }

    /// Lets time pass: the clocks jump from timer to timer, and what each one queues runs before the next.
    void advance(Seconds duration)
    {
        Date const end = dateAfter(duration);
        do
            runQueued();
        while (fireNext(end));
        now_ = end;
    }

    /// The computer sleeps: the wall clock moves and the even one does not. Wake observers run first, then what is due.
    void sleep(Seconds duration) { jump(duration, wake_); }
    /// Somebody puts the clock forward, or back. Who wants to know is told first, then what is due fires.
    void setClock(Seconds forward) { jump(forward, clock_); }
    /// How many timers are armed.
    std::size_t timers() const { return timers_.size(); }

private:
    // Without a period it is a one-shot on the monotonic clock, whose date moves along when the computer sleeps.
    struct Scheduled final : Timer {
        Scheduled(ManualRunLoop& itsLoop, Date first, Seconds itsPeriod, Task itsTask)
            : loop(itsLoop)
            , date(first)
            , period(itsPeriod)
            , task(std::move(itsTask))
        {
            loop.timers_.push_back(this);
        }
        ~Scheduled() override { std::erase(loop.timers_, this); }

        Date fireDate() const override { return date; }

        ManualRunLoop& loop;
        Date date;
        Seconds period;
        Task task;
    };

    Date dateAfter(Seconds delay) const { return now_ + std::chrono::round<Date::duration>(delay); }
    void jump(Seconds forward, platform::Observers<>& told)
    {
        Date::duration const distance = dateAfter(forward) - now_;
        now_ += distance;
        uptimeStart_ += distance;
        for (auto* const timer : timers_)
            timer->date += timer->period > Seconds::zero() ? Date::duration::zero() : distance;
        told.notify();
        advance({});
    }

    // Fires the earliest timer that is due by the end; of several at one date the one that was made first.
    bool fireNext(Date end)
    {
        auto const earliest = std::ranges::min_element(timers_, {}, &Scheduled::date);
        if (earliest == timers_.end() || (*earliest)->date > end)
            return false;
        auto& timer = **earliest;
        now_ = std::max(now_, timer.date);
        if (timer.period == Seconds::zero())
            std::erase(timers_, &timer);
        while (timer.date <= now_ && timer.period > Seconds::zero())
            timer.date += std::chrono::round<Date::duration>(timer.period);
        // A copy, for it may end its own timer.
        auto const task = timer.task;
        task();
        return true;
    }

    Date now_;
    Date uptimeStart_ = now_;
    std::vector<Scheduled*> timers_;
    std::vector<std::unique_ptr<Timer>> kept_;
    platform::Observers<> wake_;
    platform::Observers<> clock_;
    std::deque<Task> queued_;
};
