// SPDX-License-Identifier: MIT
#pragma once

#include "platform/Color.h"

#include <string>
#include <string_view>

/// The scripts that run in the provider's page. Each stands alone; the first of its statements that fails ends it, and
/// what the earlier ones did stays.
namespace pageScripts {

/// Cuts the page down to its usage section and gives it a plain style.
std::string restyling();

/// Lets the table's last row, which is today's, and the legend's marker stand out.
std::string todayHighlight();
std::string todayLegend();

/// Puts a warning in the place of the page's title. The text is markup without a single quote, a backslash or a line
/// break.
std::string banner(std::string_view warning);

std::string pageBackground(platform::Color color);
std::string pageText(platform::Color color);
std::string boxBackground(platform::Color color);
/// Colours the rows of all tables; the document's last one keeps its highlight where it is today's.
std::string rowBackground(platform::Color color, bool lastIsToday);

/// Is true if the page has the provider's failure notice and its markup holds the word "error". The page itself is
/// searched, for its notice can be of any size.
std::string hasFailureNotice();

/// Has no effect and no value.
std::string nothing();

}
