// SPDX-License-Identifier: MIT
#include "app/UsageFigures.h"

#include "platform/LeadingNumber.h"

#include <algorithm>
#include <array>
#include <limits>

namespace {

constexpr std::array<std::string_view, 4> units { "MB", "GB", "TB", "PB" };

double bytesOf(platform::Dictionary const& report, std::string_view name)
{
    auto const* const text = platform::entry<std::string>(report, name);
    return text ? platform::leadingNumber(*text) : 0;
}

// Dividing once by a million could change the last digit.
double megabytes(double bytes) { return bytes / 1000 / 1000; }

}

UsageFigures UsageFigures::fromReport(platform::Dictionary const& report, std::string_view capText)
{
    UsageFigures figures;
    figures.downloaded = megabytes(bytesOf(report, "used:download"));
    figures.uploaded = megabytes(bytesOf(report, "used:upload"));
    figures.usedTotal = figures.uploaded + figures.downloaded;
    figures.graceDownloaded = megabytes(bytesOf(report, "grace:download"));
    figures.graceUploaded = megabytes(bytesOf(report, "grace:upload"));
    figures.graceTotal = figures.graceUploaded + figures.graceDownloaded;
    figures.overallTotal = megabytes(bytesOf(report, "total:download") + bytesOf(report, "total:upload"));
    figures.cap = platform::leadingNumber(capText) * 1000;
    figures.remaining = figures.cap - figures.usedTotal;
    return figures;
}

float UsageFigures::percentage() const
{
    constexpr double most = std::numeric_limits<float>::max();
    return static_cast<float>(std::clamp(usedTotal / cap * 100, -most, most));
}

std::string_view UsageFigures::scaleToDisplayUnit()
{
    std::size_t unit = 0;
    while (overallTotal > 1000 && unit + 1 < units.size()) {
        for (double* const figure : { &downloaded, &uploaded, &usedTotal, &graceDownloaded, &graceUploaded, &graceTotal,
                 &overallTotal, &cap, &remaining })
            *figure /= 1000;
        ++unit;
    }
    return units.at(unit);
}
