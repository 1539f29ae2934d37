// SPDX-License-Identifier: MIT
#pragma once

#include "app/AddKeySheet.h"
#include "app/CacheClearedMessage.h"
#include "app/NextTimer.h"
#include "app/RefreshTimers.h"
#include "app/StartAtLogin.h"
#include "app/UpdateDates.h"
#include "app/UsageDisplay.h"
#include "app/VolumeFormatter.h"
#include "platform/ComboBox.h"
#include "platform/NotificationCenter.h"
#include "platform/RunLoop.h"
#include "platform/Sender.h"
#include "platform/StatusItem.h"
#include "platform/Value.h"
#include "storage/StoredKeys.h"
#include "storage/UsageCaps.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace platform {
class UserDefaults;
struct Platform;
}
class CacheData;
class DetailedUsageViewController;
class TouchBarMaker;
struct Outlets;

/// The application's controller. It owns the current report, the timers and the status item, and drives everything
/// through the models of its outlets. Lives for the whole run; main thread only.
class AppDelegate final : private platform::ComboBoxDelegate, private platform::NotificationCenterDelegate {
public:
    AppDelegate(platform::Platform& platform, Outlets& outlets);
    ~AppDelegate() override;

    // Launch
    /// Runs once, when the desktop is up and the outlets have their restored state.
    void applicationDidFinishLaunching();
    platform::StatusItem& usageStatusItem() { return usageStatusItem_; }

    // Key list
    /// Fills the key list from the settings and takes the current usage key from the list's text.
    void loadKeys();
    /// The selected key entry, including nickname and key.
    std::optional<std::string> getCurrentlySelectedKey() const;

    // Refresh
    /// Gets the report of the current usage key and presents it. It comes from the cache if that is allowed and fresh,
    /// else from the provider. Does nothing while the key list shows no entry.
    void updateUsageWithCache(bool cacheAllowed, bool withNotification);
    void updateUsageWithCache(bool cacheAllowed) { updateUsageWithCache(cacheAllowed, false); }
    void updateUsageWithCacheTimer() { updateUsageWithCache(false, true); }
    /// Queues the presentation of the current report.
    void updateTitleBar();
    void didActivateNotification(platform::NotificationId id) override;

    // Schedule
    /// Queues the re-arming of the refresh timer for a fire date (with interval 0) or for an interval in seconds
    /// (without a fire date). Always returns true.
    bool updateTimer(std::optional<platform::Date> withFireDate, std::int64_t orWithInterval);
    /// Puts the dates of the last and the next update into the menu.
    void updateTitleBarDates();
    /// Handles a new interval: clears the cached reports and fetches a new one.
    void doChangeUpdateIntervalDropdown();
    void doFixError();
    /// Handles waking from sleep: a refresh that fell due meanwhile is made at once.
    void receiveWakeNote();
    /// Handles a change to the clock. If the next refresh is now more than a whole interval away, the cached reports,
    /// whose due times are just as wrong, are cleared, and a refresh is made at once.
    void receiveClockNote();

    // Status menu
    /// Shows the waiting state.
    void updateMenuBarLoading();
    /// Shows the preferences window in front of the program's own windows.
    void clickMenuItem();
    /// Shows the preferences window in front of all programs' windows.
    void showPreferences();
    void showUsageWindow();
    void updateButton();
    void quitButton();
    /// Rebuilds the connection submenu from the key list.
    void doUpdateSubMenu();
    /// Switches to the connection at the position given by the sender's tag, or to the first if the sender has none.
    void doSelectSubMenuWithMenuItem(platform::Sender sender);

    // Key management
    AddKeySheet& addKeySheet() { return addKeySheet_; }
    /// Confirms the selected connection and the typed cap, closes the preferences window and refreshes. After a pick
    /// from the submenu it only refreshes.
    void useConnection();
    /// Closes the preferences window. An unconfirmed selection or cap is confirmed, so that no window shows one
    /// connection's name with another's figures.
    void closePreferences();
    /// Opens the preferences window with the sheet for a new connection.
    void addKeyButton();
    void addKeyAction();
    void doAddKey();
    /// Adds and selects a connection. Returns false, with nothing changed, if the list already has the same entry.
    bool addKeyWithNickname(std::string_view nickname, std::string_view withKey);
    void removeKeyButton();
    /// Removes the selected connection if the user answered with the alert's first button.
    void doRemoveKeyAndAlert(int andReturnCode);
    /// Opens the daily usage window, and hides the usage window if it was opened from there.
    void viewDailyUsageDataButton(platform::Sender sender);
    void comboBoxSelectionDidChange() override;

    // Preferences
    /// Makes the check boxes' titles white, to suit the coloured background.
    void updateDesign();
    /// Fills the cap field with the stored cap of the selected connection.
    void doUpdateUsageCapText();
    void clearCache();
    /// Clears the cache and shows a message for a while.
    void clearCacheButton();
    /// Handles a change to how connections are named.
    void changeOnlyKeyNicknames();
    /// Handles the choice of another figure for the status item.
    void changeStatusBarDropdown();

    // Appearance
    /// Sets the preferences window's background for the current appearance.
    void updateDarkAppearance();
    /// Starts observing what happens outside the controller: wakes, clock changes, the appearance.
    void fileNotifications();

private:
    struct Refresh;

    // Launch
    void performStartupActions();
    bool applyVersionRule();
    void repairCacheOnce();
    void upgradeMeter();

    // Refresh
    void refreshInBackground(Refresh const& refresh);
    void acceptCachedReport(Refresh const& refresh, platform::Dictionary const& report);
    void acceptFetchedReport(Refresh const& refresh, platform::Dictionary report, platform::Date lastUpdate);
    void acceptFailure(std::string const& usageKey);
    void notify();

    // Schedule
    void armUpdateInterval(std::optional<platform::Date> fireDate, platform::Seconds interval);
    void recordLastUpdate();

    // Presentation
    void presentReport();
    void presentFailure();
    UsageFigures currentFigures() const;
    void followSelection();

    // Key management
    void selectFirstKey();

    IntervalChoice intervalChoice() const;
    std::string text(std::string_view key) const;
    CacheData cacheData() const;

    platform::Platform& platform_;
    Outlets& outlets_;
    platform::StatusItem usageStatusItem_;
    platform::UserDefaults* prefs_ = nullptr;
    StoredKeys storedKeys_;
    UsageCaps usageCaps_;
    VolumeFormatter volumeFormatter_;

    /// The current report: empty until the first refresh ends, nullopt after a failed one.
    std::optional<platform::Dictionary> usageDictionary_;
    /// The usage key of the current report or failure; nullopt until the first refresh ends.
    std::optional<std::string> reportKey_;
    /// The current usage key.
    std::string selectedKey_;
    /// The entry that selectedKey_ comes from.
    std::string confirmedEntry_;
    RefreshTimers timers_;
    UsageDisplay display_;
    UpdateDates dates_;
    AddKeySheet addKeySheet_;
    CacheClearedMessage cacheClearedMessage_;
    StartAtLogin startAtLogin_;
    /// Null if the desktop has no touch bar.
    std::unique_ptr<TouchBarMaker> touchBarMaker_;
    /// Set when a connection was picked from the submenu; useConnection() then stores no cap and closes nothing.
    bool usedMenuItemForSelection_ = false;
    std::unique_ptr<DetailedUsageViewController> detailedUsageController_;

    std::vector<platform::Subscription> observations_;
    /// Active while the user is asked whether to remove a connection.
    platform::Subscription removalObservation_;
};
