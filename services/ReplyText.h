// SPDX-License-Identifier: MIT
#pragma once

#include "platform/XmlParser.h"

#include <string_view>

/// In bytes. Replies have some hundred; the texts of one are kept several times over while it is read.
inline constexpr std::size_t maximumReplySize = 1'048'576;

/// Reads the XML of a reply's body. One that is larger, without what stands around it, counts as not well-formed.
bool parseReply(std::string_view body, platform::XmlParserDelegate& delegate);

/// A reply's body without the line breaks at its ends, and then without the spaces and tabs at its ends. A line break
/// that only shows once the spaces are gone stays. Both steps know Unicode's line breaks and spaces.
std::string_view trimmedReply(std::string_view body);

/// A text without any spaces, tabs and line breaks at its ends.
std::string_view trimmedText(std::string_view text);
