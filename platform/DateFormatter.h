// SPDX-License-Identifier: MIT
#pragma once

#include "platform/Date.h"

#include <unicode/uversion.h>

#include <memory>
#include <string>

U_NAMESPACE_BEGIN
class DateFormat;
U_NAMESPACE_END

namespace platform {

/// Writes moments in a locale's short date and time styles, with words such as "today" in place of the date where the
/// locale has them. It keeps the day and the time zone that it was made in, so it is made anew for each use.
class DateFormatter {
public:
    explicit DateFormatter(std::string const& locale);
    ~DateFormatter();

    std::string string(Date date) const;

private:
    std::unique_ptr<icu::DateFormat> format_;
};

}
