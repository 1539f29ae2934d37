// SPDX-License-Identifier: MIT
#include "app/UsageFigures.h"
#include "platform/LeadingNumber.h"
#include "platform/NumberFormatter.h"
#include "platform/Value.h"
#include "storage/KeyEntry.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <limits>
#include <string>

namespace {

void require(bool holds)
{
    if (!holds)
        std::abort();
}

// Reads a text with the C library's function, but lets only decimal numbers through.
double numberOf(std::string const& text)
{
    constexpr double most = std::numeric_limits<double>::max();
    auto const decimal = text.substr(0, text.find_first_not_of(" \t\n\v\f\r+-.0123456789eE"));
    return std::clamp(std::strtod(decimal.c_str(), nullptr), -most, most);
}

// A figure's text must match the figure to the hundredth.
void checkText(double figure)
{
    static platform::NumberFormatter const formatter("en_US");
    auto text = formatter.string(figure);
    if (std::isinf(figure))
        return require(text == (figure > 0 ? "∞" : "-∞"));
    std::erase(text, ',');
    require(std::abs(std::strtod(text.c_str(), nullptr) - figure) <= 0.005001 + std::abs(figure) * 1e-15);
}

}

// The input is a nickname and a key on two lines. It also serves as one of the provider's figures and as a typed cap.
extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size)
{
    std::string const text(data, data + size);
    auto const nickname = text.substr(0, text.find('\n'));
    auto const key = text.substr(std::min(nickname.size() + 1, size));
    auto const entry = KeyEntry::parse(KeyEntry::format(nickname, key));
    require(!KeyEntry::isAcceptable(nickname, key) || (entry.nickname == nickname && entry.key == key));

    require(platform::leadingNumber(nickname) == numberOf(nickname));
    platform::Dictionary const report { { "used:download", nickname }, { "total:upload", nickname } };
    auto figures = UsageFigures::fromReport(report, key);
    require(!figures.hasCap() || std::isfinite(figures.percentage()));
    require(figures.scaleToDisplayUnit() == "PB" || figures.overallTotal <= 1000);
    for (double const figure : { figures.usedTotal, figures.overallTotal, figures.cap, figures.remaining })
        checkText(figure);
    return 0;
}
