// SPDX-License-Identifier: MIT
#include "storage/UsageReport.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdlib>

namespace {

constexpr std::int64_t noChoice = -1;
constexpr std::array<char const*, 6> figures { "used:download", "used:upload", "grace:download", "grace:upload",
    "total:download", "total:upload" };

// Larger reals do not fit into an integer.
constexpr double tooLarge = 9.2e18;

}

std::int64_t updateIntervalOf(platform::Dictionary const& report)
{
    auto const found = report.find(reportEntry::updateInterval);
    if (found == report.end())
        return 0;
    platform::Value const& interval = found->second;
    if (auto const* const integer = interval.as<std::int64_t>())
        return *integer;
    if (auto const* const real = interval.as<double>())
        return std::abs(*real) < tooLarge ? static_cast<std::int64_t>(*real) : noChoice;
    if (auto const* const boolean = interval.as<bool>())
        return *boolean ? 1 : 0;
    if (auto const* const text = interval.as<std::string>())
        return std::strtoll(text->c_str(), nullptr, 10);
    return noChoice;
}

bool hasFigure(platform::Dictionary const& report)
{
    return std::ranges::any_of(
        figures, [&report](char const* figure) { return platform::entry<std::string>(report, figure) != nullptr; });
}
