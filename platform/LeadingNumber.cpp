// SPDX-License-Identifier: MIT
#include "platform/LeadingNumber.h"

#include <charconv>
#include <limits>

namespace platform {

namespace {

bool isDigit(char character) { return character >= '0' && character <= '9'; }

bool startsWithAnyOf(std::string_view text, std::string_view characters)
{
    return !text.empty() && characters.find(text.front()) != std::string_view::npos;
}

std::size_t countDigits(std::string_view text)
{
    std::size_t count = 0;
    while (count < text.size() && isDigit(text[count]))
        ++count;
    return count;
}

// Requires "e", an optional sign and at least one digit; anything less is not part of the number.
std::size_t lengthOfExponent(std::string_view text)
{
    if (!startsWithAnyOf(text, "eE"))
        return 0;
    std::size_t const sign = startsWithAnyOf(text.substr(1), "+-") ? 1 : 0;
    std::size_t const digits = countDigits(text.substr(1 + sign));
    return digits == 0 ? 0 : 1 + sign + digits;
}

std::size_t lengthOfMantissa(std::string_view text)
{
    std::size_t const whole = countDigits(text);
    if (!startsWithAnyOf(text.substr(whole), "."))
        return whole;
    std::size_t const fraction = countDigits(text.substr(whole + 1));
    return whole + fraction == 0 ? 0 : whole + 1 + fraction;
}

// Whether a number outside the range of a double is too small rather than too large.
bool isTiny(std::string_view mantissa, std::string_view exponent)
{
    auto const point = static_cast<double>(std::min(mantissa.find('.'), mantissa.size()));
    auto const leadingDigit = static_cast<double>(mantissa.find_first_not_of("0."));
    return point - leadingDigit + leadingNumber(exponent.substr(std::min<std::size_t>(exponent.size(), 1))) < 0;
}

}

double leadingNumber(std::string_view text)
{
    text.remove_prefix(std::min(text.find_first_not_of(" \t\n\v\f\r"), text.size()));
    bool const negative = text.starts_with('-');
    if (startsWithAnyOf(text, "+-"))
        text.remove_prefix(1);

    auto const mantissa = text.substr(0, lengthOfMantissa(text));
    if (mantissa.empty())
        return 0;
    text.remove_prefix(mantissa.size());
    auto const exponent = text.substr(0, lengthOfExponent(text));

    double number = 0;
    auto const* const end = exponent.data() + exponent.size();
    if (std::from_chars(mantissa.data(), end, number).ec == std::errc::result_out_of_range)
        number = isTiny(mantissa, exponent) ? 0 : std::numeric_limits<double>::max();
    return negative ? -number : number;
}

}
