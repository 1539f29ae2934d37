// SPDX-License-Identifier: MIT
#pragma once

#include "platform/Date.h"

#include <string>

namespace platform {

/// Formats dates in a locale's short date and time styles, in the time zone current at the time of the call. If the
/// locale has words such as "today", they replace the date. Main thread only.
class DateFormatter {
public:
    explicit DateFormatter(std::string locale)
        : locale_(std::move(locale))
    {
    }

    std::string string(Date date) const;

private:
    std::string locale_;
};

}
