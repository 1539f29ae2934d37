// SPDX-License-Identifier: MIT
#pragma once

#include <string>

namespace platform {

/// Writes numbers in a locale's decimal style: grouped, with 0 to 2 fraction digits, half to even. Main thread only.
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
