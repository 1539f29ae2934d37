// SPDX-License-Identifier: MIT
#pragma once

#include <chrono>
#include <string>
#include <string_view>

namespace demo {

/// The daily usage page of a month for the usage key's connection, within the layout of the provider's site. The
/// current month ends with today's row. A future month has no table but the provider's failure notice, as has every
/// month for the notice key. Some links lead to the host's "www" sibling.
std::string usagePage(
    std::string const& host, std::string_view key, std::chrono::year_month month, std::chrono::year_month_day today);

/// The page that explains where to find a usage key; here it lists the demo's keys.
std::string helpPage();

/// The page for any other address.
std::string notFoundPage();

/// The style sheet of all pages.
std::string siteStyle();

}
