// SPDX-License-Identifier: MIT
#include "ui/CapReading.h"

#include "app/Outlets.h"
#include "app/VolumeFormatter.h"
#include "platform/Bundle.h"
#include "platform/LeadingNumber.h"

#include <algorithm>
#include <utility>

namespace {

// Whether a cap has only digits and a point, so that the user reads it as the same number as the program.
bool isPlainNumber(std::string_view cap)
{
    return cap.find_first_not_of("0123456789.") == std::string_view::npos && std::ranges::count(cap, '.') <= 1
        && platform::leadingNumber(cap) != 0;
}

std::string readingOf(std::string_view cap, platform::Bundle const& bundle, VolumeFormatter const& volumes)
{
    if (cap.empty() || isPlainNumber(cap))
        return {};
    double const number = platform::leadingNumber(cap);
    if (number == 0)
        return bundle.localizedString("USAGE_CAP_READING_NONE");
    return bundle.localizedString("USAGE_CAP_READING", volumes.formattedUsageStringWithUsageValue(number, "GB"));
}

}

platform::Subscription showCapReading(Outlets& outlets, platform::Bundle const& bundle, std::string numberLocale)
{
    return outlets.usageLimit.text.observe(
        [&outlets, &bundle, volumes = VolumeFormatter(bundle, std::move(numberLocale))](
            std::string const& cap) { outlets.usageLimitReading.text.set(readingOf(cap, bundle, volumes)); });
}
