// SPDX-License-Identifier: MIT
#pragma once

#include "platform/Value.h"

#include <cstdint>

/// The entries of a usage report other than its figures.
namespace reportEntry {

/// Date: when the report was fetched.
inline constexpr char const* lastUpdate = "lastUpdate";
/// Date: when the next automatic refresh was due at that time; absent without automatic refresh.
inline constexpr char const* nextUpdate = "nextUpdate";
/// Integer: the refresh interval in hours when the report was saved; 0 for no automatic refresh.
inline constexpr char const* updateInterval = "updateInterval";

}

/// Returns a report's interval as an integer, even if another program changed its type: a real is truncated, a boolean
/// becomes 1 or 0, and a text is parsed as the integer that it begins with. Returns 0 if there is none, and -1 for
/// anything else.
std::int64_t updateIntervalOf(platform::Dictionary const& report);

/// Whether at least one of a report's six figures exists as text.
bool hasFigure(platform::Dictionary const& report);
