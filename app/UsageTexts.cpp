// SPDX-License-Identifier: MIT
#include "app/UsageTexts.h"

#include "app/VolumeFormatter.h"

#include <array>
#include <optional>

namespace {

constexpr std::string_view megabyte = "MB";

/// The choices for the status item, in their order in the preferences.
constexpr std::array statusFigures { &UsageFigures::usedTotal, &UsageFigures::graceTotal, &UsageFigures::overallTotal,
    &UsageFigures::remaining };

}

UsageTexts::UsageTexts(UsageFigures const& figures, VolumeFormatter const& formatter)
    : megabytes_(figures)
    , scaled_(figures)
    , unit_(scaled_.scaleToDisplayUnit())
    , formatter_(formatter)
{
}

UsageTexts::Texts UsageTexts::textsOf(double UsageFigures::* figure) const
{
    auto const text = [this](double value, std::optional<std::string_view> unit) {
        return formatter_.formattedUsageStringWithUsageValue(value, unit);
    };
    if (UsageFigures::dependsOnCap(figure) && !megabytes_.hasCap()) {
        auto const unlimited = text(0.0, std::nullopt);
        return { .field = text(-1.0, std::nullopt), .toolTip = unlimited, .line = unlimited };
    }
    auto const scaled = text(scaled_.*figure, unit_);
    return { .field = scaled, .toolTip = text(megabytes_.*figure, megabyte), .line = scaled };
}

std::string UsageTexts::statusTitle(int choice) const
{
    auto const position = static_cast<std::size_t>(choice);
    bool const isChoice = choice >= 0 && position < statusFigures.size();
    return isChoice ? textsOf(statusFigures.at(position)).line : std::string(errorText);
}

std::string UsageTexts::percentage() const
{
    return formatter_.formattedUsageStringWithUsageValue(megabytes_.percentage(), "%");
}
