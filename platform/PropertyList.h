// SPDX-License-Identifier: MIT
#pragma once

#include "platform/Value.h"

#include <optional>
#include <string>
#include <string_view>

namespace platform {

/// Reads an XML property list whose root is a dictionary (Apple's PropertyList-1.0 document type, without <data>). It
/// is strict: returns nothing for a document that is not well-formed, has another structure, is nested deeper than 64
/// levels or contains an impossible number or date. Thread-safe.
std::optional<Dictionary> readPropertyList(std::string_view bytes);

/// Writes a dictionary as an XML property list. Dates lose their fractions of a second, and a character that XML cannot
/// represent becomes U+FFFD, so that the result can always be read back. Thread-safe.
std::string writePropertyList(Dictionary const& dictionary);

}
