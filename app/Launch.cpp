// SPDX-License-Identifier: MIT
#include "app/AppDelegate.h"
#include "app/Outlets.h"
#include "app/TouchBarMaker.h"
#include "platform/Bundle.h"
#include "platform/Platform.h"
#include "platform/UserDefaults.h"
#include "storage/CacheData.h"
#include "storage/KeyEntry.h"
#include "storage/SettingsKeys.h"

namespace {

// The initial choice of both pop-ups.
constexpr int defaultChoice = 2;

std::unique_ptr<TouchBarMaker> touchBarMaker(platform::Bundle const& bundle, Outlets& outlets, AppDelegate& controller)
{
    return std::make_unique<TouchBarMaker>(bundle, outlets,
        TouchBarMaker::Actions { .updateNow = [&controller](platform::Sender) { controller.updateButton(); },
            .showDailyUsage = [&controller](platform::Sender sender) { controller.viewDailyUsageDataButton(sender); },
            .selectConnection
            = [&controller](platform::Sender sender) { controller.doSelectSubMenuWithMenuItem(sender); } });
}

}

void AppDelegate::applicationDidFinishLaunching()
{
    updateMenuBarLoading();
    updateDarkAppearance();
    outlets_.versionText.text.set(platform_.bundle.labelledString("Version", platform_.bundle.shortVersion()));
    usageDictionary_ = platform::Dictionary {};
    performStartupActions();
}

void AppDelegate::performStartupActions()
{
    prefs_ = &platform_.userDefaults;
    if (platform_.touchBarAvailable) {
        touchBarMaker_ = touchBarMaker(platform_.bundle, outlets_, *this);
        touchBarMaker_->show({}, std::nullopt);
    }
    outlets_.tarvoUsageKeysComboBox.delegate = this;
    doUpdateUsageCapText();
    fileNotifications();
    updateDesign();
    if (!prefs_->contains(settings::menuBarSelector))
        outlets_.statusBarDropdown.indexOfSelectedItem.set(defaultChoice);
    bool const cacheAllowed = applyVersionRule();
    if (!prefs_->contains(settings::hourUpdateInterval))
        outlets_.updateIntervalPopupButton.indexOfSelectedItem.set(defaultChoice);
    if (!platform_.notificationCenter)
        outlets_.showNotificationsToggle.hidden.set(true);
    else if (!prefs_->contains(settings::showNotificationsMenu))
        outlets_.showNotificationsToggle.on.set(true);
    repairCacheOnce();

    if (prefs_->get<std::string>(settings::tarvoId)) {
        upgradeMeter();
    } else {
        loadKeys();
        if (prefs_->contains(settings::tarvoKeys) && !outlets_.tarvoUsageKeysComboBox.items.get().empty())
            updateUsageWithCache(cacheAllowed);
    }
}

// A report cached by another version must never be shown. Returns whether this version was the last one launched.
bool AppDelegate::applyVersionRule()
{
    auto const version = platform_.bundle.shortVersion();
    auto const* const last = prefs_->get<std::string>(settings::lastInstalledVersion);
    if (last && *last == version)
        return true;
    cacheData().clearCache();
    prefs_->set(settings::lastInstalledVersion, version);
    return false;
}

void AppDelegate::repairCacheOnce()
{
    if (prefs_->contains(settings::fixedCache) || !prefs_->contains(settings::tarvoKeys))
        return;
    if (cacheData().fixCacheWithKeyList(storedKeys_.usageKeys()))
        prefs_->set(settings::fixedCache, 1);
}

// Converts the single key of earlier versions into a key list.
void AppDelegate::upgradeMeter()
{
    auto const entry = KeyEntry::format("Home", *prefs_->get<std::string>(settings::tarvoId));
    prefs_->remove(settings::tarvoId);
    prefs_->set(settings::tarvoKeys, platform::Array { entry });
    prefs_->set(settings::tarvoKeySelected, entry);
    loadKeys();
    outlets_.tarvoUsageKeysComboBox.selectItemAtIndex(0);

    // Closing the preferences window confirms the connection.
    confirmedEntry_.clear();
    outlets_.refreshStatus.text.set({});
    showPreferences();
    outlets_.window.beginSheet(
        { .messageText = text("CONVERSION_COMPLETE"), .style = platform::Alert::Style::Informational });
}
