// SPDX-License-Identifier: MIT
#include "services/ReplyText.h"

#include "platform/Trimmed.h"

#include <array>
#include <span>

namespace {

// The first seven are Unicode's line breaks, the others the tab and the category Zs.
constexpr std::array<std::string_view, 25> whiteSpace { "\n", "\v", "\f", "\r", "\u0085", "\u2028", "\u2029", "\t", " ",
    "\u00A0", "\u1680", "\u2000", "\u2001", "\u2002", "\u2003", "\u2004", "\u2005", "\u2006", "\u2007", "\u2008",
    "\u2009", "\u200A", "\u202F", "\u205F", "\u3000" };
constexpr auto lineBreaks = std::span(whiteSpace).first<7>();
constexpr auto spaces = std::span(whiteSpace).subspan<7>();

}

bool parseReply(std::string_view body, platform::XmlParserDelegate& delegate)
{
    auto const document = trimmedReply(body);
    if (document.size() <= maximumReplySize)
        return platform::parseXml(document, delegate);
    delegate.parseErrorOccurred();
    return false;
}

std::string_view trimmedReply(std::string_view body)
{
    return platform::trimmed(platform::trimmed(body, lineBreaks), spaces);
}

std::string_view trimmedText(std::string_view text) { return platform::trimmed(text, whiteSpace); }
