// SPDX-License-Identifier: MIT
#pragma once

#include <chrono>
#include <string>
#include <string_view>

namespace demo {

/// The page of a month's daily usage, within the provider's whole site, for the connection of the usage key. The month
/// of today ends with today's row. A month that has not begun has no table, and carries the provider's failure notice,
/// as every month of the notice key does. Some of the links lead to the host's "www" sibling.
std::string usagePage(
    std::string const& host, std::string_view key, std::chrono::year_month month, std::chrono::year_month_day today);

/// The page that tells where to find a usage key; here it lists the demo's keys.
std::string helpPage();

/// What the provider answers under any other address.
std::string notFoundPage();

/// The style sheet of all pages.
std::string siteStyle();

}
