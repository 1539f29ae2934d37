// SPDX-License-Identifier: MIT
#include "platform/Utf8.h"

#include <unicode/utf8.h>

namespace platform {

std::int32_t nextCodePoint(std::string_view text, std::size_t& position)
{
    auto const length = static_cast<std::int32_t>(text.size());
    char const* const bytes = text.data();
    auto next = static_cast<std::int32_t>(position);
    UChar32 codePoint = 0;
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wconversion" // Inside ICU's macro.
    U8_NEXT(bytes, next, length, codePoint);
#pragma GCC diagnostic pop
    position = static_cast<std::size_t>(next);
    return codePoint;
}

namespace {

constexpr std::string_view replacementCharacter = "\uFFFD";

// Unicode's categories Cc, Zl and Zp.
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
        bool const isValid = codePoint >= 0 && !U_IS_UNICODE_NONCHAR(codePoint);
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
