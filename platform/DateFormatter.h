// SPDX-License-Identifier: MIT
#pragma once

#include "platform/Date.h"

#include <string>

namespace platform {

/// Writes moments in a locale's short date and time styles, with words such as "today" in place of the date where the
/// locale has them, in the time zone of the moment. Main thread only.
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
