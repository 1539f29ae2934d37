// SPDX-License-Identifier: MIT
#pragma once

#include "platform/XmlParser.h"

#include <string_view>

/// In bytes. Replies have a few hundred, and several copies of a reply's texts exist while it is read.
inline constexpr std::size_t maximumReplySize = 1'048'576;

/// Parses the XML of a reply's body. One that is larger, after trimming, counts as not well-formed.
bool parseReply(std::string_view body, platform::XmlParserDelegate& delegate);

/// Trims line breaks, then spaces and tabs from both ends of a reply's body. A line break inside the spaces is kept.
/// Both steps recognize Unicode's line breaks and spaces.
std::string_view trimmedReply(std::string_view body);

/// Trims all spaces, tabs and line breaks from both ends of a text.
std::string_view trimmedText(std::string_view text);
