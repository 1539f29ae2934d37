// SPDX-License-Identifier: MIT
#pragma once

#include <string_view>

namespace platform {

/// Reads the longest decimal number at the beginning of a text (sign, digits, decimal point, exponent), after any white
/// space. Returns 0 for a text without one, and the largest double for a number that is too large. Independent of the
/// locale.
double leadingNumber(std::string_view text);

}
