// SPDX-License-Identifier: MIT
#include "app/UsageFigures.h"
#include "platform/Value.h"
#include "storage/KeyEntry.h"

#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <string>

// A key entry, whose parts are also a figure of the provider's and a cap as typed: no number comes out that is none.
extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size)
{
    auto const entry = KeyEntry::parse(std::string(data, data + size));
    platform::Dictionary const report { { "used:download", entry.nickname }, { "total:upload", entry.nickname } };
    auto figures = UsageFigures::fromReport(report, entry.key.value_or(std::string()));
    figures.scaleToDisplayUnit();
    for (double const figure : { figures.usedTotal, figures.overallTotal, figures.cap, figures.remaining }) {
        if (std::isnan(figure))
            std::abort();
    }
    return 0;
}
