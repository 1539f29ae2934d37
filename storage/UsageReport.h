// SPDX-License-Identifier: MIT
#pragma once

/// The entries of a usage report beside its figures.
namespace reportEntry {

/// Date: when the report was fetched.
inline constexpr char const* lastUpdate = "lastUpdate";
/// Date: when the next automatic refresh was due then; absent without one.
inline constexpr char const* nextUpdate = "nextUpdate";
/// Integer: the interval choice when the report was saved, in hours; 0 for no automatic refresh.
inline constexpr char const* updateInterval = "updateInterval";

}
