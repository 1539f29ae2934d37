// SPDX-License-Identifier: MIT
#include "tests/support/ManualRunLoop.h"

#include <algorithm>

using platform::Date;
using platform::Seconds;
using platform::Task;

// Without a period it is a one-shot on the monotonic clock, whose date moves along when the computer sleeps.
struct ManualRunLoop::Scheduled {
    Date date;
    Seconds period;
    Task task;
    bool valid = true;
};

class ManualRunLoop::Handle final : public platform::Timer {
public:
    explicit Handle(std::shared_ptr<Scheduled> scheduled)
        : scheduled_(std::move(scheduled))
    {
    }
    Handle(Handle const&) = delete;
    Handle& operator=(Handle const&) = delete;
    ~Handle() override { scheduled_->valid = false; }

    Date fireDate() const override { return scheduled_->date; }
    bool isValid() const override { return scheduled_->valid; }
    void cancel() override { scheduled_->valid = false; }

private:
    std::shared_ptr<Scheduled> scheduled_;
};

ManualRunLoop::ManualRunLoop(Date now)
    : now_(now)
{
}

std::unique_ptr<platform::Timer> ManualRunLoop::repeat(Date first, Seconds period, Task task)
{
    return std::make_unique<Handle>(schedule(first, period, std::move(task)));
}

std::unique_ptr<platform::Timer> ManualRunLoop::after(Seconds delay, Task task)
{
    return std::make_unique<Handle>(schedule(dateAfter(delay), {}, std::move(task)));
}

void ManualRunLoop::performAfter(Seconds delay, Task task) { schedule(dateAfter(delay), {}, std::move(task)); }

Date ManualRunLoop::dateAfter(Seconds delay) const { return now_ + std::chrono::round<Date::duration>(delay); }

void ManualRunLoop::runQueued()
{
    for (; !queued_.empty(); queued_.pop_front())
        queued_.front()();
}

void ManualRunLoop::advance(Seconds duration)
{
    Date const end = dateAfter(duration);
    do
        runQueued();
    while (fireNext(end));
    now_ = end;
}

void ManualRunLoop::jump(Seconds forward, platform::Observers<>& told)
{
    Date::duration const distance = dateAfter(forward) - now_;
    now_ += distance;
    uptimeStart_ += distance;
    for (std::shared_ptr<Scheduled> const& timer : timers_)
        timer->date += timer->period > Seconds::zero() ? Date::duration::zero() : distance;
    told.tell();
    advance({});
}

std::size_t ManualRunLoop::timers() const
{
    return static_cast<std::size_t>(std::ranges::count_if(timers_, [](auto const& timer) { return timer->valid; }));
}

std::shared_ptr<ManualRunLoop::Scheduled> ManualRunLoop::schedule(Date date, Seconds period, Task task)
{
    return timers_.emplace_back(std::make_shared<Scheduled>(Scheduled { date, period, std::move(task) }));
}

// Fires the earliest timer that is due by the end; of several at one date the one that was made first.
bool ManualRunLoop::fireNext(Date end)
{
    std::erase_if(timers_, [](auto const& timer) { return !timer->valid; });
    auto const earliest = std::ranges::min_element(timers_, {}, [](auto const& timer) { return timer->date; });
    if (earliest == timers_.end() || (*earliest)->date > end)
        return false;
    std::shared_ptr<Scheduled> const timer = *earliest;
    now_ = std::max(now_, timer->date);
    timer->valid = timer->period > Seconds::zero();
    while (timer->valid && timer->date <= now_)
        timer->date += std::chrono::round<Date::duration>(timer->period);
    timer->task();
    return true;
}
