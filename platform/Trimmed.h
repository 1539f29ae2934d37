// SPDX-License-Identifier: MIT
#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <span>
#include <string_view>

namespace platform {

inline constexpr std::array<std::string_view, 4> xmlWhiteSpace { " ", "\t", "\r", "\n" };

/// Returns a text without these characters, each in UTF-8, at its beginning and its end.
inline std::string_view trimmed(std::string_view text, std::span<std::string_view const> characters = xmlWhiteSpace)
{
    // The length of the character at one end of the text; 0 if it is none of these.
    auto const lengthOf = [characters](auto const& isAtEnd) -> std::size_t {
        auto const found = std::ranges::find_if(characters, isAtEnd);
        return found == characters.end() ? 0 : found->size();
    };
    // Comparing one byte first rules out nearly every character at once.
    auto const isFirst = [&text](std::string_view character) {
        return !text.empty() && text.front() == character.front() && text.starts_with(character);
    };
    auto const isLast = [&text](std::string_view character) {
        return !text.empty() && text.back() == character.back() && text.ends_with(character);
    };
    while (auto const length = lengthOf(isFirst))
        text.remove_prefix(length);
    while (auto const length = lengthOf(isLast))
        text.remove_suffix(length);
    return text;
}

}
