// SPDX-License-Identifier: MIT
#pragma once

#include "platform/NumberFormatter.h"

#include <optional>
#include <string>
#include <string_view>
#include <utility>

namespace platform {
class Bundle;
}

/// Formats volumes and percentages in the user's locale. Main thread only.
class VolumeFormatter {
public:
    /// The locale has an ICU name.
    VolumeFormatter(platform::Bundle const& bundle, std::string numberLocale)
        : bundle_(bundle)
        , usageFormatter_(std::move(numberLocale))
    {
    }

    /// Returns a figure with its unit. Without a unit, returns the text for a missing cap if the value is 0, and the
    /// symbol for it if the value is -1.
    std::string formattedUsageStringWithUsageValue(double value, std::optional<std::string_view> andMeasurement) const;

private:
    platform::Bundle const& bundle_;
    platform::NumberFormatter usageFormatter_;
};
