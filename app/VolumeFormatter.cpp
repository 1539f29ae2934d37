// SPDX-License-Identifier: MIT
#include "app/VolumeFormatter.h"

#include "platform/Bundle.h"

std::string VolumeFormatter::formattedUsageStringWithUsageValue(
    double value, std::optional<std::string_view> andMeasurement) const
{
    if (andMeasurement)
        return usageFormatter_.string(value).append(*andMeasurement);
    if (value == 0.0)
        return bundle_.localizedString("UNLIMITED");
    if (value == -1.0)
        return "∞";
    return bundle_.localizedString("FAILURE_SHORT_RESPONSE");
}
