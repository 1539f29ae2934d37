// SPDX-License-Identifier: MIT
#include "app/AppDelegate.h"
#include "app/Outlets.h"
#include "platform/Calendar.h"
#include "platform/DateFormatter.h"
#include "platform/Platform.h"
#include "storage/UsageReport.h"

namespace {

using namespace std::chrono_literals;

// Formatting dates is slow, and the user should first see that the program is working. By then a cached report has also
// arrived, so its dates are formatted only once.
constexpr platform::Seconds timeToShowWork = 10ms;

}

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
    auto const plan = nextTimer(platform_.runLoop.now(), fireDate, interval, intervalChoice(), stored);

    if (updateInterval_)
        updateInterval_->cancel();
    if (plan)
        updateInterval_ = platform_.runLoop.repeat(plan->first, plan->period, [this] { updateUsageWithCacheTimer(); });
    noteLastUpdate();
    datesTimer_ = platform_.runLoop.after(timeToShowWork, [this] { showDates(); });
}

void AppDelegate::updateTitleBarDates()
{
    noteLastUpdate();
    showDates();
}

void AppDelegate::noteLastUpdate()
{
    auto lastUpdate = platform_.runLoop.now();
    if (usageDictionary_ && usageDictionary_->contains(reportEntry::nextUpdate)) {
        if (auto const* const stored = platform::entry<platform::Date>(*usageDictionary_, reportEntry::lastUpdate))
            lastUpdate = *stored;
    }
    shownLastUpdate_ = lastUpdate;
}

void AppDelegate::menuNeedsUpdate()
{
    if (shownLastUpdate_)
        showDates();
}

// An open window shows the dates too, and the time zone may change. A quarter of an hour is enough, since in every time
// zone the day begins on one.
void AppDelegate::keepDatesRight(bool visible)
{
    datesCheck_.reset();
    if (!visible)
        return;
    menuNeedsUpdate();
    auto const quarter
        = std::chrono::floor<std::chrono::duration<std::int64_t, std::ratio<900>>>(platform_.runLoop.now());
    datesCheck_ = platform_.runLoop.repeat(quarter + 15min, 15min, [this] { menuNeedsUpdate(); });
}

// Formatting dates is slow, and must not delay opening a menu whose dates are still right.
void AppDelegate::showDates()
{
    datesTimer_.reset();
    bool const armed = updateInterval_ && updateInterval_->isValid();
    auto const nextUpdate = armed ? std::optional(updateInterval_->fireDate()) : std::nullopt;
    WrittenDates const dates { *shownLastUpdate_, nextUpdate, platform::dayMark(platform_.runLoop.now()) };
    if (std::exchange(writtenDates_, dates) == dates)
        return;
    platform::DateFormatter const formatter(platform_.dateLocale);
    tellDates(formatter.string(*shownLastUpdate_), nextUpdate ? formatter.string(*nextUpdate) : text("NO_NEXT_UPDATE"));
}

void AppDelegate::tellDates(std::string_view lastUpdate, std::string_view nextUpdate)
{
    outlets_.lastUpdateText.text.set(labelled("LAST_UPDATE", lastUpdate));
    outlets_.nextUpdateText.text.set(labelled("NEXT_UPDATE", nextUpdate));
    outlets_.lastUpdateMenuItem->title.set(outlets_.lastUpdateText.text.get());
    outlets_.nextUpdateMenuItem->title.set(outlets_.nextUpdateText.text.get());
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
    bool const overdue
        = updateInterval_ && updateInterval_->isValid() && platform_.runLoop.now() > updateInterval_->fireDate();
    if (overdue)
        updateUsageWithCache(false);
}

void AppDelegate::receiveClockNote()
{
    // A small correction of the clock is ignored.
    constexpr platform::Seconds slack = std::chrono::minutes(1);
    bool const putOff = updateInterval_ && updateInterval_->isValid()
        && updateInterval_->fireDate() - platform_.runLoop.now() > periodOf(intervalChoice()) + slack;
    if (!putOff)
        return;
    clearCache();
    updateUsageWithCache(false);
}
