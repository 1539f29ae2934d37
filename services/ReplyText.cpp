// SPDX-License-Identifier: MIT
#include "services/ReplyText.h"

#include "platform/Utf8.h"

namespace {

using Predicate = bool (*)(std::int32_t codePoint);

bool isLineBreak(std::int32_t codePoint)
{
    return (codePoint >= 0x0A && codePoint <= 0x0D) || codePoint == 0x85 || codePoint == 0x2028 || codePoint == 0x2029;
}

// Matches the tab and Unicode's category Zs.
bool isSpace(std::int32_t codePoint)
{
    return codePoint == '\t' || codePoint == ' ' || codePoint == 0xA0 || codePoint == 0x1680
        || (codePoint >= 0x2000 && codePoint <= 0x200A) || codePoint == 0x202F || codePoint == 0x205F
        || codePoint == 0x3000;
}

bool isSpaceOrLineBreak(std::int32_t codePoint) { return isSpace(codePoint) || isLineBreak(codePoint); }

bool continuesCodePoint(char byte) { return (static_cast<std::uint8_t>(byte) & 0xC0) == 0x80; }

// Finds where the last code point begins. Invalid UTF-8 is never a space, so its exact beginning does not matter.
std::size_t lastCodePoint(std::string_view text)
{
    std::size_t begin = text.size() - 1;
    while (begin > 0 && continuesCodePoint(text[begin]))
        --begin;
    return begin;
}

std::string_view trimmed(std::string_view text, Predicate shouldGo)
{
    for (std::size_t next = 0; !text.empty() && shouldGo(platform::nextCodePoint(text, next)); next = 0)
        text.remove_prefix(next);
    while (!text.empty()) {
        auto const last = lastCodePoint(text);
        auto next = last;
        if (!shouldGo(platform::nextCodePoint(text, next)) || next != text.size())
            break;
        text = text.substr(0, last);
    }
    return text;
}

}

bool parseReply(std::string_view body, platform::XmlParserDelegate& delegate)
{
    auto const document = trimmedReply(body);
    if (document.size() <= maximumReplySize)
        return platform::parseXml(document, delegate);
    delegate.parseErrorOccurred();
    return false;
}

std::string_view trimmedReply(std::string_view body) { return trimmed(trimmed(body, isLineBreak), isSpace); }

std::string_view trimmedText(std::string_view text) { return trimmed(text, isSpaceOrLineBreak); }
