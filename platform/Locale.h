// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <vector>

namespace platform {

/// The user's locale for a POSIX category such as "LC_NUMERIC": LC_ALL, then the category, then LANG, as ICU names it.
/// "en_US" where none is set, the C locale is, or nobody knows the language. Main thread only.
std::string userLocale(char const* category);

/// The languages that the user reads, the preferred one first: LANGUAGE where it is set, then the locale of messages.
std::vector<std::string> userLanguages();

/// Whether a language is written from the right to the left.
bool isRightToLeft(std::string const& language);

}
