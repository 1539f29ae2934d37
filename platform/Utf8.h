// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace platform {

/// Returns the code point at the position, and advances the position past it. Returns a negative value for invalid
/// UTF-8, skipping one "maximal subpart" as Unicode defines it. The position must be inside the text, which must be
/// shorter than 2 GiB.
std::int32_t nextCodePoint(std::string_view text, std::size_t& position);

bool isValidUtf8(std::string_view text);

/// Counts the code points of a text. Each invalid piece counts as one.
std::size_t lengthOfUtf8(std::string_view text);

/// Replaces each invalid piece of UTF-8, and each noncharacter (such as U+FFFE), with U+FFFD, because some readers
/// reject noncharacters as well.
std::string wellFormedUtf8(std::string_view text);

/// Removes line breaks, tabs and other control characters from a text; invalid UTF-8 is kept.
std::string withoutControlCharacters(std::string_view text);

}
