// SPDX-License-Identifier: MIT
#pragma once

#include "platform/Value.h"

#include <optional>
#include <string>
#include <string_view>

namespace platform {

/// Reads an XML property list whose root is a dictionary (Apple's PropertyList-1.0 document type, without <data>).
/// Strict: a document that is not well-formed, of another shape, nested deeper than 64 levels or with an impossible
/// number or date is no value. Any thread.
std::optional<Dictionary> readPropertyList(std::string_view bytes);

/// Writes a dictionary as an XML property list. Dates lose their fractions of a second; a character that XML cannot
/// hold becomes U+FFFD, so that what is written can always be read back. Any thread.
std::string writePropertyList(Dictionary const& dictionary);

}
