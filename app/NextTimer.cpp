// SPDX-License-Identifier: MIT
#include "app/NextTimer.h"

namespace {

TimerPlan every(platform::Seconds period, platform::Date now)
{
    return { now + std::chrono::duration_cast<platform::Date::duration>(period), period };
}

}

std::optional<TimerPlan> nextTimer(platform::Date now, std::optional<platform::Date> fireDate,
    platform::Seconds interval, IntervalChoice choice, std::int64_t choiceOfReport)
{
    if (!fireDate)
        return interval > platform::Seconds::zero() ? std::optional(every(interval, now)) : std::nullopt;
    if (choice <= 0)
        return std::nullopt;
    if (choice != choiceOfReport)
        return every(periodOf(choice), now);

    platform::Seconds const untilThen = *fireDate - now;
    return TimerPlan { *fireDate,
        untilThen > platform::Seconds::zero() ? untilThen : platform::Seconds(periodOf(choice)) };
}
