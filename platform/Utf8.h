// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace platform {

/// The code point that starts at the position, which moves past it; negative for a piece that is not UTF-8 (each as
/// long as Unicode's "maximal subpart"). The position must lie inside the text, which is shorter than 2 GiB.
std::int32_t nextCodePoint(std::string_view text, std::size_t& position);

bool isValidUtf8(std::string_view text);

/// How many code points a text has, each piece that is not UTF-8 being one.
std::size_t lengthOfUtf8(std::string_view text);

/// The text with U+FFFD in place of each piece that is not UTF-8, and of each code point that is never a character
/// (such as U+FFFE): some readers take those for no UTF-8 either.
std::string wellFormedUtf8(std::string_view text);

/// The text without line breaks, tabs and other control characters; what is not UTF-8 stays.
std::string withoutControlCharacters(std::string_view text);

}
