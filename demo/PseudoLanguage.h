// SPDX-License-Identifier: MIT
#pragma once

#include "platform/Value.h"

#include <string>
#include <string_view>

namespace demo {

/// Translates a text to a language that nobody speaks but everybody can read: accented, 40 percent longer and in
/// brackets, so that a text that was left untranslated or cut off is easy to spot. Placeholders ("%i", "%@") are kept.
/// No quotes, backslashes or line breaks are added.
std::string pseudoText(std::string_view text);

/// Translates a table of texts to that language.
platform::Dictionary pseudoTable(platform::Dictionary const& texts);

}
