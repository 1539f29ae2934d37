// SPDX-License-Identifier: MIT
#include "app/UsageFigures.h"
#include "bench/parts/Benchmarks.h"
#include "bench/parts/RunningCore.h"
#include "services/UsageData.h"

#include <unicode/datefmt.h>
#include <unicode/numfmt.h>
#include <unicode/timezone.h>

namespace {

// The numbers shown for a report of a connection with a cap: 9 in MB in tool tips, the percentage at the level, 9 in
// the usage window, 5 in the menu and 1 in the status title, 25 in total. The dates are already formatted.
std::vector<double> shownNumbers()
{
    CannedProvider provider;
    auto const report = UsageData(provider, ProviderAddresses("host")).updateUsage("demohome");
    require(report.has_value(), "a report can be read");
    auto figures = UsageFigures::fromReport(*report, "100");
    std::vector<double> numbers;
    auto const showAll = [&] {
        for (double const number : { figures.downloaded, figures.uploaded, figures.usedTotal, figures.graceDownloaded,
                 figures.graceUploaded, figures.graceTotal, figures.overallTotal, figures.cap, figures.remaining })
            numbers.push_back(number);
    };
    showAll();
    numbers.push_back(figures.percentage());
    figures.scaleToDisplayUnit();
    showAll();
    for (double const number : { figures.downloaded, figures.graceDownloaded, figures.overallTotal, figures.cap,
             figures.remaining, figures.overallTotal })
        numbers.push_back(number);
    return numbers;
}

std::unique_ptr<icu::NumberFormat> numberFormat()
{
    UErrorCode status = U_ZERO_ERROR;
    std::unique_ptr<icu::NumberFormat> format(
        icu::NumberFormat::createInstance(icu::Locale("en_US"), UNUM_DECIMAL, status));
    require(U_SUCCESS(status), "ICU has its data");
    format->setMinimumFractionDigits(0);
    format->setMaximumFractionDigits(2);
    format->setRoundingMode(icu::NumberFormat::kRoundHalfEven);
    return format;
}

std::unique_ptr<icu::DateFormat> dateFormat()
{
    std::unique_ptr<icu::DateFormat> format(icu::DateFormat::createDateTimeInstance(
        icu::DateFormat::kShortRelative, icu::DateFormat::kShort, icu::Locale("en_US")));
    format->adoptTimeZone(icu::TimeZone::detectHostTimeZone());
    return format;
}

template <typename Format> std::string formatted(Format const& format, double value)
{
    icu::UnicodeString text;
    std::string utf8;
    format.format(value, text).toUTF8String(utf8);
    return utf8;
}

std::string formatted(icu::DateFormat const& format, platform::Date date)
{
    auto const milliseconds = std::chrono::duration_cast<std::chrono::milliseconds>(date.time_since_epoch());
    return formatted(format, static_cast<UDate>(milliseconds.count()));
}

void presentBare(benchmark::State& state)
{
    auto const shown = shownNumbers();
    auto const numberFormatter = numberFormat();
    while (state.KeepRunning()) {
        for (double const number : shown) {
            auto text = formatted(*numberFormatter, number);
            benchmark::DoNotOptimize(text);
        }
    }
}

void present(benchmark::State& state)
{
    SettledCore settled({ RunningCore::home, RunningCore::cottage });
    auto& outlets = settled.core.outlets;
    require(outlets.downloadUsage.toolTip.get() == formatted(*numberFormat(), shownNumbers().front()) + "MB",
        "both write the same numbers");
    require(outlets.lastUpdateMenuItem->title.get() == "Last update: " + formatted(*dateFormat(), settled.launched),
        "both write the same dates");
    require(!outlets.usageBar.hidden.get(), "the level shows");
    while (state.KeepRunning()) {
        settled.core.controller.updateTitleBar();
        settled.runLoop.runQueued();
        benchmark::ClobberMemory();
    }
}

}

void addPresentationBenchmarks()
{
    add("presentation/ours", &present);
    add("presentation/bare", &presentBare);
}
