// SPDX-License-Identifier: MIT
#pragma once

#include <unicode/uversion.h>

#include <memory>
#include <string>

U_NAMESPACE_BEGIN
class NumberFormat;
U_NAMESPACE_END

namespace platform {

/// Writes numbers in a locale's decimal style: grouped, with 0 to 2 fraction digits, half to even.
class NumberFormatter {
public:
    explicit NumberFormatter(std::string const& locale);
    ~NumberFormatter();

    std::string string(double number) const;

private:
    std::unique_ptr<icu::NumberFormat> format_;
};

}
