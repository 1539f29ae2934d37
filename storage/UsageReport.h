// SPDX-License-Identifier: MIT
#pragma once

#include "platform/Value.h"

#include <cstdint>

/// The entries of a usage report beside its figures.
namespace reportEntry {

/// Date: when the report was fetched.
inline constexpr char const* lastUpdate = "lastUpdate";
/// Date: when the next automatic refresh was due then; absent without one.
inline constexpr char const* nextUpdate = "nextUpdate";
/// Integer: the interval choice when the report was saved, in hours; 0 for no automatic refresh.
inline constexpr char const* updateInterval = "updateInterval";

}

/// A report's interval choice as an integer, whatever type another program gave it: a real without its fraction, a
/// boolean as 1 or 0, a text by the integer that it begins with after any blanks. 0 when there is none; -1 for what is
/// no number at all.
std::int64_t updateIntervalOf(platform::Dictionary const& report);

/// Whether there is at least one of a report's six figures, as text.
bool hasFigure(platform::Dictionary const& report);
