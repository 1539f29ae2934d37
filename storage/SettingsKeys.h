// SPDX-License-Identifier: MIT
#pragma once

/// The names under which the settings are stored.
namespace settings {

/// Array of texts: the key entries, in the order they were added.
inline constexpr char const* tarvoKeys = "tarvo_keys";
/// Text: the selected key entry, including nickname and key.
inline constexpr char const* tarvoKeySelected = "tarvo_key_selected";
/// Dictionary: key entry to cap in gigabytes, as typed.
inline constexpr char const* usageCapValues = "usage_cap_values";
/// Text: the version that was last launched.
inline constexpr char const* lastInstalledVersion = "last_installed_version";
/// 1 after the one-time repair of the cache.
inline constexpr char const* fixedCache = "fixed_cache";
/// Text: the single usage key that earlier versions stored.
inline constexpr char const* tarvoId = "tarvoId";
/// Integer: the index of the figure in the status title.
inline constexpr char const* menuBarSelector = "menuBarSelector";
/// Integer: the hours between automatic refreshes; 0 disables them.
inline constexpr char const* hourUpdateInterval = "hour_update_interval";
/// Text, like the next two: where the user left a window.
inline constexpr char const* preferencesWindowPlace = "preferences_window_place";
inline constexpr char const* usageWindowPlace = "usage_window_place";
inline constexpr char const* dailyUsageWindowPlace = "daily_usage_window_place";
/// Boolean, like all that follow.
inline constexpr char const* showNotificationsMenu = "showNotificationsMenu";
inline constexpr char const* showUsageCap = "show_usage_cap";
inline constexpr char const* showRemainingUsage = "show_remaining_usage";
inline constexpr char const* showLastUpdate = "show_last_update";
inline constexpr char const* showNextUpdate = "show_next_update";
inline constexpr char const* showOnlyNicknames = "show_only_nicknames";

}
