// SPDX-License-Identifier: MIT
#pragma once

#include <chrono>
#include <string>

namespace demo {

/// The page of a month's daily usage, within the provider's whole site. The month of today ends with today's row; a
/// month that has not begun gets the provider's failure notice in place of the table.
std::string usagePage(std::chrono::year_month month, std::chrono::year_month_day today);

/// The page that tells where to find a usage key; here it lists the demo's keys.
std::string helpPage();

/// What the provider answers under any other address.
std::string notFoundPage();

}
