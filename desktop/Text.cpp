// SPDX-License-Identifier: MIT
#include "desktop/Text.h"

#include "platform/Utf8.h"

namespace {

std::string shortened(std::string_view text, std::size_t maximumLength)
{
    std::size_t length = 0;
    std::size_t lastLetter = 0;
    for (std::size_t position = 0; position < text.size(); ++length) {
        if (length == maximumLength)
            return platform::wellFormedUtf8(text.substr(0, lastLetter)) + "…";
        lastLetter = position;
        platform::nextCodePoint(text, position);
    }
    return platform::wellFormedUtf8(text);
}

}

std::string asPanelLabel(std::string_view text) { return shortened(text, 32); }

std::string asMenuLine(std::string_view text) { return shortened(text, 80); }

std::string escapedForHtml(std::string_view text)
{
    std::string escaped;
    for (char const character : text) {
        switch (character) {
        case '&':
            escaped += "&amp;";
            break;
        case '<':
            escaped += "&lt;";
            break;
        case '>':
            escaped += "&gt;";
            break;
        case '"':
            escaped += "&quot;";
            break;
        default:
            escaped += character;
        }
    }
    return escaped;
}
