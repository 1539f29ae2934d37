// SPDX-License-Identifier: MIT
#include "platform/NumberFormatter.h"

#include <unicode/numfmt.h>

namespace platform {

NumberFormatter::NumberFormatter(std::string const& locale)
{
    UErrorCode status = U_ZERO_ERROR;
    format_.reset(icu::NumberFormat::createInstance(icu::Locale(locale.c_str()), UNUM_DECIMAL, status));
    if (U_FAILURE(status)) {
        format_.reset();
        return;
    }
    format_->setMinimumFractionDigits(0);
    format_->setMaximumFractionDigits(2);
    format_->setRoundingMode(icu::NumberFormat::kRoundHalfEven);
}

NumberFormatter::~NumberFormatter() = default;

std::string NumberFormatter::string(double number) const
{
    // Without ICU's data a plain number is better than none.
    if (!format_)
        return std::to_string(number);
    icu::UnicodeString text;
    std::string utf8;
    format_->format(number, text).toUTF8String(utf8);
    return utf8;
}

}
