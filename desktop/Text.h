// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <string_view>

// Prepares texts for other programs. Invalid UTF-8 becomes U+FFFD.

/// Shortens a text for a panel to at most 32 characters, including the ellipsis. Every figure of a real connection
/// fits.
std::string asPanelLabel(std::string_view text);

/// Shortens a text for a menu line, to at most 80 characters, so that it fits on a screen.
std::string asMenuLine(std::string_view text);

/// Escapes a text so that HTML shows it literally.
std::string escapedForHtml(std::string_view text);
