// SPDX-License-Identifier: MIT
#include "platform/Utf8.h"

#include <cstddef>

namespace platform {

namespace {

std::uint8_t byteAt(std::string_view text, std::size_t position) { return static_cast<std::uint8_t>(text[position]); }

/// The bytes that may follow the first byte of a code point, by Unicode's table of well-formed sequences (3-7): their
/// number and the range of the second. Any others lie between 0x80 and 0xBF.
struct Continuation {
    int count = 0;
    std::uint8_t lowestSecond = 0x80;
    std::uint8_t highestSecond = 0xBF;
};

// The count is 0 for a byte that cannot begin a code point.
Continuation continuationOf(std::uint8_t first)
{
    if (first < 0xC2 || first > 0xF4)
        return {};
    if (first < 0xE0)
        return { .count = 1 };
    if (first < 0xF0)
        return { .count = 2,
            .lowestSecond = static_cast<std::uint8_t>(first == 0xE0 ? 0xA0 : 0x80),
            .highestSecond = static_cast<std::uint8_t>(first == 0xED ? 0x9F : 0xBF) };
    return { .count = 3,
        .lowestSecond = static_cast<std::uint8_t>(first == 0xF0 ? 0x90 : 0x80),
        .highestSecond = static_cast<std::uint8_t>(first == 0xF4 ? 0x8F : 0xBF) };
}

}

std::int32_t nextCodePoint(std::string_view text, std::size_t& position)
{
    auto const first = byteAt(text, position++);
    if (first < 0x80)
        return first;
    auto const [count, lowestSecond, highestSecond] = continuationOf(first);
    // The first byte has one bit less of the code point for each byte that follows.
    std::int32_t codePoint = first & (0x3F >> count);
    auto lowest = lowestSecond;
    auto highest = highestSecond;
    for (int i = 0; i < count; ++i) {
        if (position == text.size() || byteAt(text, position) < lowest || byteAt(text, position) > highest)
            return -1;
        codePoint = codePoint << 6 | (byteAt(text, position++) & 0x3F);
        lowest = 0x80;
        highest = 0xBF;
    }
    return count > 0 ? codePoint : -1;
}

namespace {

constexpr std::string_view replacementCharacter = "\uFFFD";

bool isNoncharacter(std::int32_t codePoint)
{
    return (codePoint >= 0xFDD0 && codePoint <= 0xFDEF) || (codePoint & 0xFFFE) == 0xFFFE;
}

// Matches Unicode's categories Cc, Zl and Zp.
bool isControlCharacter(std::int32_t codePoint)
{
    return (codePoint >= 0 && codePoint < 0x20) || (codePoint >= 0x7F && codePoint < 0xA0) || codePoint == 0x2028
        || codePoint == 0x2029;
}

}

bool isValidUtf8(std::string_view text)
{
    for (std::size_t position = 0; position < text.size();) {
        if (nextCodePoint(text, position) < 0)
            return false;
    }
    return true;
}

std::size_t lengthOfUtf8(std::string_view text)
{
    std::size_t length = 0;
    for (std::size_t position = 0; position < text.size(); ++length)
        nextCodePoint(text, position);
    return length;
}

std::string wellFormedUtf8(std::string_view text)
{
    std::string wellFormed;
    for (std::size_t position = 0; position < text.size();) {
        std::size_t const start = position;
        auto const codePoint = nextCodePoint(text, position);
        bool const isValid = codePoint >= 0 && !isNoncharacter(codePoint);
        wellFormed += isValid ? text.substr(start, position - start) : replacementCharacter;
    }
    return wellFormed;
}

std::string withoutControlCharacters(std::string_view text)
{
    std::string kept;
    for (std::size_t position = 0; position < text.size();) {
        std::size_t const start = position;
        if (!isControlCharacter(nextCodePoint(text, position)))
            kept += text.substr(start, position - start);
    }
    return kept;
}

}
