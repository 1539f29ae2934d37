// SPDX-License-Identifier: MIT
#pragma once

#include "platform/RunLoop.h"

#include <cstdint>
#include <optional>

/// Hours between automatic refreshes, as picked by the user; 0 for none.
using IntervalChoice = int;

constexpr std::chrono::hours periodOf(IntervalChoice choice) { return std::chrono::hours(choice); }

/// When the refresh timer fires first, and how often after that.
struct TimerPlan {
    platform::Date first;
    platform::Seconds period;

    bool operator==(TimerPlan const&) const = default;
};

/// The plan for a refresh timer that is armed for a fire date (a cached report's) or for an interval (a new refresh's).
/// A cached due time holds only while the choice it was made under still does. Nothing: no automatic refresh.
std::optional<TimerPlan> nextTimer(platform::Date now, std::optional<platform::Date> fireDate,
    platform::Seconds interval, IntervalChoice choice, std::int64_t choiceOfReport);
