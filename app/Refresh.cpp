// SPDX-License-Identifier: MIT
#include "app/AppDelegate.h"
#include "app/Outlets.h"
#include "platform/BackgroundQueues.h"
#include "platform/Bundle.h"
#include "platform/Platform.h"
#include "services/ProviderAddresses.h"
#include "services/UsageData.h"
#include "storage/CacheData.h"
#include "storage/UsageReport.h"

// The parameters of one refresh. Its key stays the same, whatever the user selects meanwhile.
struct AppDelegate::Refresh {
    std::string usageKey;
    bool cacheAllowed;
    bool withNotification;
};

void AppDelegate::updateUsageWithCache(bool cacheAllowed, bool withNotification)
{
    if (outlets_.tarvoUsageKeysComboBox.text.get().empty())
        return;

    updateMenuBarLoading();
    timers_.cancelAll();
    if (auto const choice = intervalChoice(); choice != 0)
        updateTimer(std::nullopt, std::chrono::seconds(periodOf(choice)).count());

    bool const started = platform_.backgroundQueues.async("usage_background",
        [this, refresh = Refresh { selectedKey_, cacheAllowed, withNotification }] { refreshInBackground(refresh); });
    if (!started)
        acceptFailure(selectedKey_);
}

// Runs on the refresh's own queue, and passes the outcome to the main thread in a single task.
void AppDelegate::refreshInBackground(Refresh const& refresh)
{
    if (refresh.cacheAllowed) {
        if (auto cached = cacheData().retrieveCachedFileWithName(refresh.usageKey)) {
            platform_.runLoop.perform(
                [this, refresh, report = *std::move(cached)] { acceptCachedReport(refresh, report); });
            return;
        }
    }

    auto fetched = UsageData(platform_.urlLoader, ProviderAddresses(platform_.bundle.providerHost()))
                       .updateUsage(refresh.usageKey);
    auto const lastUpdate = platform_.runLoop.now();
    platform_.runLoop.perform(
        [this, refresh, lastUpdate, report = std::move(fetched).value_or(platform::Dictionary {})] {
            if (report.empty())
                acceptFailure(refresh.usageKey);
            else
                acceptFetchedReport(refresh, report, lastUpdate);
        });
}

void AppDelegate::acceptCachedReport(Refresh const& refresh, platform::Dictionary const& report)
{
    usageDictionary_ = report;
    reportKey_ = refresh.usageKey;
    if (intervalChoice() != 0) {
        auto const* const nextUpdate = platform::entry<platform::Date>(report, reportEntry::nextUpdate);
        updateTimer(nextUpdate ? std::optional(*nextUpdate) : std::nullopt, 0);
    }
    updateTitleBar();
}

void AppDelegate::acceptFetchedReport(Refresh const& refresh, platform::Dictionary report, platform::Date lastUpdate)
{
    report.insert_or_assign(reportEntry::lastUpdate, lastUpdate);
    if (auto const next = timers_.nextUpdate())
        report.insert_or_assign(reportEntry::nextUpdate, *next);
    report.insert_or_assign(reportEntry::updateInterval, intervalChoice());

    usageDictionary_ = std::move(report);
    reportKey_ = refresh.usageKey;

    // Removing a connection also removes its file, which a refresh in progress must not recreate.
    if (storedKeys_.hasUsageKey(refresh.usageKey))
        cacheData().saveCacheFile(*usageDictionary_, refresh.usageKey);
    if (refresh.withNotification)
        notify();
    updateTitleBar();
}

void AppDelegate::acceptFailure(std::string const& usageKey)
{
    usageDictionary_.reset();
    reportKey_ = usageKey;
    updateTitleBar();
}

void AppDelegate::notify()
{
    if (!platform_.notificationCenter || !outlets_.showNotificationsToggle.on.get())
        return;
    platform_.notificationCenter->setDelegate(this);
    platform_.notificationCenter->deliver({ text("NOTIFICATION_TITLE"), text("NOTIFICATION_INFORMATIVE_TEXT") });
}

void AppDelegate::didActivateNotification(platform::NotificationId id)
{
    platform_.notificationCenter->removeDelivered(id);
    showUsageWindow();
}
