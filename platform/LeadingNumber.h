// SPDX-License-Identifier: MIT
#pragma once

#include <string_view>

namespace platform {

/// Reads the longest decimal number at the beginning of a text (sign, digits, decimal point, exponent), after any white
/// space. A text without one is 0; a number too large for a double is the largest one. Independent of the locale.
double leadingNumber(std::string_view text);

}
