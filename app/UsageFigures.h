// SPDX-License-Identifier: MIT
#pragma once

#include "platform/Value.h"

#include <string_view>

/// A report's volumes and the cap. They start out in megabytes (1,000,000 bytes); scaleToDisplayUnit() converts them
/// all.
struct UsageFigures {
    double downloaded = 0;
    double uploaded = 0;
    double usedTotal = 0;
    double graceDownloaded = 0;
    double graceUploaded = 0;
    double graceTotal = 0;
    double overallTotal = 0;
    /// 0 means no cap.
    double cap = 0;
    /// Negative if the cap is exceeded.
    double remaining = 0;

    /// Treats a missing figure as 0. The cap is in gigabytes, as typed.
    static UsageFigures fromReport(platform::Dictionary const& report, std::string_view capText);

    /// Whether a figure exists only if there is a cap.
    static constexpr bool dependsOnCap(double UsageFigures::* figure)
    {
        return figure == &UsageFigures::cap || figure == &UsageFigures::remaining;
    }

    bool hasCap() const { return cap != 0; }
    /// The used share of the cap, in percent. Requires a cap.
    float percentage() const;

    /// Divides every figure by the same power of 1000, so that the overall total is at most 1000 if the units go that
    /// far. Returns the unit: "MB", "GB", "TB" or "PB".
    std::string_view scaleToDisplayUnit();
};
