// SPDX-License-Identifier: MIT
#pragma once

/// The names under which the settings are stored.
namespace settings {

/// Array of texts: the key entries, in the order they were added.
inline constexpr char const* tarvoKeys = "tarvo_keys";
/// Text: the selected key entry, whole.
inline constexpr char const* tarvoKeySelected = "tarvo_key_selected";
/// Dictionary: whole key entry to cap in gigabytes, as typed.
inline constexpr char const* usageCapValues = "usage_cap_values";
/// Text: the version that last launched.
inline constexpr char const* lastInstalledVersion = "last_installed_version";
/// 1 once the one-time repair of the cache was made.
inline constexpr char const* fixedCache = "fixed_cache";
/// Text: the single usage key of earlier versions.
inline constexpr char const* tarvoId = "tarvoId";
/// Integer: the index of what the status title shows.
inline constexpr char const* menuBarSelector = "menuBarSelector";
/// Integer: the hours between automatic refreshes, 0 for none.
inline constexpr char const* hourUpdateInterval = "hour_update_interval";
/// Text, as are the next two: where a window was left.
inline constexpr char const* preferencesWindowPlace = "preferences_window_place";
inline constexpr char const* usageWindowPlace = "usage_window_place";
inline constexpr char const* dailyUsageWindowPlace = "daily_usage_window_place";
/// Boolean, as are all that follow.
inline constexpr char const* showNotificationsMenu = "showNotificationsMenu";
inline constexpr char const* showUsageCap = "show_usage_cap";
inline constexpr char const* showRemainingUsage = "show_remaining_usage";
inline constexpr char const* showLastUpdate = "show_last_update";
inline constexpr char const* showNextUpdate = "show_next_update";
inline constexpr char const* showOnlyNicknames = "show_only_nicknames";

}
