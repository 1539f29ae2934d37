// SPDX-License-Identifier: MIT
#pragma once

#include "platform/Color.h"

#include <string>
#include <string_view>

/// Scripts that run in the provider's page. Each is independent. A statement that fails ends its script, but the
/// effects of the statements before it remain.
namespace pageScripts {

/// Reduces the page to its usage section and gives it a plain style.
std::string restyling();

/// Highlights the table's last row, which is today's, and the legend's marker.
std::string todayHighlight();
std::string todayLegend();

/// Replaces the page's title with a warning. The text is markup without single quotes, backslashes or line breaks.
std::string banner(std::string_view warning);

std::string pageBackground(platform::Color color);
std::string pageText(platform::Color color);
std::string boxBackground(platform::Color color);
/// Colours the rows of all tables, except that the document's last row keeps its highlight if it is today's.
std::string rowBackground(platform::Color color, bool lastIsToday);

/// Evaluates to true if the page has the provider's failure notice and its markup contains "error". The search runs
/// inside the page, because the notice can be of any size.
std::string hasFailureNotice();

/// Has no effect and no value.
std::string nothing();

}
