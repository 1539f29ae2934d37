// SPDX-License-Identifier: MIT
#include "app/AppDelegate.h"
#include "app/Outlets.h"
#include "platform/Platform.h"
#include "storage/UsageReport.h"

bool AppDelegate::updateTimer(std::optional<platform::Date> withFireDate, std::int64_t orWithInterval)
{
    platform_.runLoop.perform([this, withFireDate, orWithInterval] {
        armUpdateInterval(withFireDate, std::chrono::seconds(orWithInterval));
    });
    return true;
}

void AppDelegate::armUpdateInterval(std::optional<platform::Date> fireDate, platform::Seconds interval)
{
    std::int64_t const stored = usageDictionary_ ? updateIntervalOf(*usageDictionary_) : 0;
    timers_.armRefresh(nextTimer(platform_.runLoop.now(), fireDate, interval, intervalChoice(), stored));
    recordLastUpdate();
    dates_.showSoon();
}

void AppDelegate::updateTitleBarDates()
{
    recordLastUpdate();
    dates_.show();
}

void AppDelegate::recordLastUpdate()
{
    auto lastUpdate = platform_.runLoop.now();
    if (usageDictionary_ && usageDictionary_->contains(reportEntry::nextUpdate)) {
        if (auto const* const stored = platform::entry<platform::Date>(*usageDictionary_, reportEntry::lastUpdate))
            lastUpdate = *stored;
    }
    dates_.setLastUpdate(lastUpdate);
}

void AppDelegate::doChangeUpdateIntervalDropdown()
{
    // A report saved under the old interval must not count as fresh.
    clearCache();
    loadKeys();
    updateUsageWithCache(false);
}

void AppDelegate::doFixError() { updateUsageWithCache(false); }

void AppDelegate::receiveWakeNote()
{
    if (auto const next = timers_.nextUpdate(); next && platform_.runLoop.now() > *next)
        updateUsageWithCache(false);
}

void AppDelegate::receiveClockNote()
{
    // A small correction of the clock is ignored.
    constexpr platform::Seconds slack = std::chrono::minutes(1);
    auto const next = timers_.nextUpdate();
    if (!next || *next - platform_.runLoop.now() <= periodOf(intervalChoice()) + slack)
        return;
    clearCache();
    updateUsageWithCache(false);
}
