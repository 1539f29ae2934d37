// SPDX-License-Identifier: MIT
#pragma once

#include "platform/RunLoop.h"

#include <cstdint>
#include <optional>

/// Hours between automatic refreshes, as chosen by the user; 0 disables them.
using IntervalChoice = int;

constexpr std::chrono::hours periodOf(IntervalChoice choice) { return std::chrono::hours(choice); }

/// When the refresh timer first fires, and its period after that.
struct TimerPlan {
    platform::Date first;
    platform::Seconds period;

    bool operator==(TimerPlan const&) const = default;
};

/// Plans the refresh timer for a fire date (of a cached report) or for an interval (after a new refresh). A cached due
/// time is valid only if the user's choice has not changed since. Returns nothing if there is no automatic refresh.
std::optional<TimerPlan> nextTimer(platform::Date now, std::optional<platform::Date> fireDate,
    platform::Seconds interval, IntervalChoice choice, std::int64_t choiceOfReport);
