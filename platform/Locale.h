// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <vector>

namespace platform {

/// Returns the ICU name of the user's locale for a POSIX category such as "LC_NUMERIC", from LC_ALL, the category
/// itself or LANG. Returns "en_US" if none is set, if it is the C locale, or if the language is unknown. Main thread
/// only.
std::string userLocale(char const* category);

/// Returns the user's languages, the preferred one first: those of LANGUAGE if it is set, then that of LC_MESSAGES.
std::vector<std::string> userLanguages();

/// Whether a language is written from right to left.
bool isRightToLeft(std::string const& language);

}
