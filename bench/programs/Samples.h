// SPDX-License-Identifier: MIT
#pragma once

#include "bench/programs/Clock.h"

#include <iostream>
#include <string>
#include <string_view>
#include <utility>

/// Prints the measurements of one subject as lines of "figure, subject, unit, value", separated by tabs.
class Samples {
public:
    explicit Samples(std::string subject)
        : subject_(std::move(subject))
    {
    }

    void add(std::string_view figure, std::string_view unit, double value) const
    {
        std::cout << figure << '\t' << subject_ << '\t' << unit << '\t' << value << std::endl;
    }

    void add(std::string_view figure, Milliseconds time) const { add(figure, "ms", time.count()); }

    void addMemory(std::string_view figure, long kilobytes) const { add(figure, "kB", static_cast<double>(kilobytes)); }

    void addCount(std::string_view figure, long count) const { add(figure, "", static_cast<double>(count)); }

private:
    std::string subject_;
};
