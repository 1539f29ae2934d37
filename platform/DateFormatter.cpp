// SPDX-License-Identifier: MIT
#include "platform/DateFormatter.h"

#include <unicode/datefmt.h>
#include <unicode/timezone.h>

namespace platform {

DateFormatter::DateFormatter(std::string const& locale)
    : format_(icu::DateFormat::createDateTimeInstance(
          icu::DateFormat::kShortRelative, icu::DateFormat::kShort, icu::Locale(locale.c_str())))
{
    if (format_)
        format_->adoptTimeZone(icu::TimeZone::detectHostTimeZone());
}

DateFormatter::~DateFormatter() = default;

std::string DateFormatter::string(Date date) const
{
    if (!format_)
        return {};
    auto const milliseconds = std::chrono::duration_cast<std::chrono::milliseconds>(date.time_since_epoch());
    icu::UnicodeString text;
    std::string utf8;
    format_->format(static_cast<UDate>(milliseconds.count()), text).toUTF8String(utf8);
    return utf8;
}

}
