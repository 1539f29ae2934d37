// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <string_view>

// Texts as other programs show them. What is not UTF-8 becomes U+FFFD.

/// A text beside other programs' items in a panel: of at most 32 letters, which end in an ellipsis if it was longer.
/// Every figure of a real connection fits.
std::string asPanelLabel(std::string_view text);

/// A line of a menu, which fits on a screen: of at most 80 letters.
std::string asMenuLine(std::string_view text);

/// A text that stands for itself where HTML is read.
std::string escapedForHtml(std::string_view text);
