// SPDX-License-Identifier: MIT
#include "services/ReplyText.h"

#include <unicode/uchar.h>
#include <unicode/utf8.h>

namespace {

using Predicate = bool (*)(UChar32);

bool isLineBreak(UChar32 character)
{
    return (character >= 0x0A && character <= 0x0D) || character == 0x85 || character == 0x2028 || character == 0x2029;
}

bool isSpace(UChar32 character) { return character == '\t' || u_charType(character) == U_SPACE_SEPARATOR; }

bool isSpaceOrLineBreak(UChar32 character) { return isSpace(character) || isLineBreak(character); }

std::string_view trimmed(std::string_view text, Predicate shouldGo)
{
    auto const* const bytes = reinterpret_cast<uint8_t const*>(text.data());
    auto const length = static_cast<int32_t>(text.size());
    int32_t begin = 0;
    for (int32_t next = 0; next < length; begin = next) {
        UChar32 character = 0;
        U8_NEXT(bytes, next, length, character);
        if (!shouldGo(character))
            break;
    }
    int32_t end = length;
    for (int32_t previous = length; previous > begin; end = previous) {
        UChar32 character = 0;
        U8_PREV(bytes, begin, previous, character);
        if (!shouldGo(character))
            break;
    }
    return text.substr(static_cast<std::size_t>(begin), static_cast<std::size_t>(end - begin));
}

}

bool parseReply(std::string_view body, platform::XmlParserDelegate& delegate)
{
    auto const document = trimmedReply(body);
    if (document.size() <= largestReply)
        return platform::parseXml(document, delegate);
    delegate.parseErrorOccurred();
    return false;
}

std::string_view trimmedReply(std::string_view body) { return trimmed(trimmed(body, isLineBreak), isSpace); }

std::string_view trimmedText(std::string_view text) { return trimmed(text, isSpaceOrLineBreak); }
