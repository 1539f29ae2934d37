// SPDX-License-Identifier: MIT
#pragma once

#include "platform/Value.h"

#include <string>
#include <string_view>

namespace demo {

/// A text as it would stand in a language that nobody speaks but everybody can read: accented, 40 percent longer and in
/// brackets, so that a text which was left over or cut off catches the eye. A place for a number or a name ("%i", "%@")
/// stays as it is. No quote, backslash or line break comes in that was not there.
std::string pseudoText(std::string_view text);

/// A table of texts in that language.
platform::Dictionary pseudoTable(platform::Dictionary const& texts);

}
