// SPDX-License-Identifier: MIT
#pragma once

#include <string>

namespace platform {

/// Formats numbers in a locale's decimal style: grouped, with 0 to 2 fraction digits, rounded half to even. Main thread
/// only.
class NumberFormatter {
public:
    explicit NumberFormatter(std::string locale)
        : locale_(std::move(locale))
    {
    }

    std::string string(double number) const;

private:
    std::string locale_;
};

}
