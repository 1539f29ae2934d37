// SPDX-License-Identifier: MIT
#pragma once

#include "app/NextTimer.h"
#include "platform/ComboBox.h"
#include "platform/NotificationCenter.h"
#include "platform/NumberFormatter.h"
#include "platform/RunLoop.h"
#include "platform/Sender.h"
#include "platform/StatusItem.h"
#include "platform/TouchBar.h"
#include "platform/Value.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace platform {
class MenuItem;
class TextField;
class UserDefaults;
class Window;
struct Platform;
}
class CacheData;
class DetailedUsageViewController;
class ProviderAddresses;
struct Outlets;
struct UsageFigures;

/// The application's controller. It owns the current report, the timers and the status item, and drives everything
/// through the models of its outlets. Lives for the whole run; main thread only.
class AppDelegate final : private platform::ComboBoxDelegate,
                          private platform::NotificationCenterDelegate,
                          private platform::TouchBarDelegate {
public:
    AppDelegate(platform::Platform& platform, Outlets& outlets);
    ~AppDelegate() override;

    // Launch

    /// Runs once, when the desktop is up and the outlets hold their restored state.
    void applicationDidFinishLaunching();
    platform::StatusItem& usageStatusItem() { return usageStatusItem_; }

    // Key list

    /// Fills the key list from the settings and takes the current usage key from the list's text.
    void loadKeys();
    /// The selected key entry, whole.
    std::optional<std::string> getCurrentlySelectedKey() const;
    platform::Dictionary usageCapDictionaryByModifyingCap(
        std::optional<std::string> const& cap, std::optional<std::string> const& forKey) const;
    /// Returns whether the entry had a cap.
    bool doRemoveKeyFromUsageCapDictionary(std::string_view keyEntry);
    std::optional<std::string> usageCapForKey(std::string_view keyEntry) const;

    // Refresh

    /// Obtains the report of the current usage key, from the cache where that is allowed and fresh, else from the
    /// provider, and presents it. Does nothing while the key list shows no entry.
    void updateUsageWithCache(bool cacheAllowed, bool withNotification);
    void updateUsageWithCache(bool cacheAllowed) { updateUsageWithCache(cacheAllowed, false); }
    void updateUsageWithCacheTimer() { updateUsageWithCache(false, true); }
    /// Queues the presentation of the current report.
    void updateTitleBar();
    void didActivateNotification(platform::NotificationId id) override;

    // Schedule

    /// Queues the re-arming of the refresh timer for a fire date (with interval 0) or for an interval in seconds (with
    /// no fire date). Always true.
    bool updateTimer(std::optional<platform::Date> withFireDate, std::int64_t orWithInterval);
    /// Writes the dates of the last and the next update into the menu.
    void updateTitleBarDates();
    /// Writes the dates that the menu shows anew: "today" is another day by now, or the time zone another one.
    void menuNeedsUpdate();
    /// The user picked an interval: every cached report goes, and a new one is fetched.
    void doChangeUpdateIntervalDropdown();
    void doFixError();
    /// The computer woke: a refresh that fell due in sleep is made at once.
    void receiveWakeNote();
    /// The clock was set: where that put the next refresh off beyond a whole interval, it is made at once, and all
    /// cached reports go, whose due times were put off as well.
    void receiveClockNote();

    // Presentation

    /// A figure with its unit, or one of the texts for a missing cap: 0 and -1 without a unit.
    std::string formattedUsageStringWithUsageValue(double value, std::optional<std::string_view> andMeasurement) const;

    // Status menu

    /// Shows the waiting state.
    void updateMenuBarLoading();
    /// Shows the preferences window among the program's own windows.
    void clickMenuItem();
    /// Shows the preferences window in front of all programs' windows.
    void showPreferences();
    void showUsageWindow();
    /// Refreshes from the provider, whatever the cache holds.
    void updateButton();
    void quitButton();
    /// Rebuilds the connection submenu from the key list.
    void doUpdateSubMenu();
    /// Switches to the connection whose position is the sender's tag; the first for any other sender.
    void doSelectSubMenuWithMenuItem(platform::Sender sender);

    // Key management

    /// Confirms the selected connection with the cap as typed, closes the preferences window and refreshes. After a
    /// pick from the submenu it only refreshes.
    void useConnection();
    /// Closes the preferences window. What was picked or typed there and not confirmed is confirmed with it, so that no
    /// window shows one connection's name over another's figures.
    void closePreferences();
    /// Opens the add-key sheet, and asks the provider for the key of this connection in silence.
    void addKeyButton();
    void cancelButton();
    void addKeyAction();
    void doAddKey();
    /// Adds and selects a connection; false, with nothing changed, when the list has the same entry already.
    bool addKeyWithNickname(std::string_view nickname, std::string_view withKey);
    void checkCurrentKey();
    void autoRetrieveCodeButton();
    /// Fills the key field with the key of this connection, if the provider knows it; else says so where that is asked.
    void checkCurrentKeyWithError(bool showError);
    void removeKeyButton();
    /// Removes the selected connection if the alert was answered with its first button.
    void doRemoveKeyAndAlert(int andReturnCode);
    void getUsageCode();
    void checkUpdates();
    /// Opens the day-by-day window. The usage window makes room for it if it was asked from there.
    void viewDailyUsageDataButton(platform::Sender sender);
    void comboBoxSelectionDidChange() override;

    // Preferences

    /// Gives the check boxes white titles, for the coloured ground.
    void updateDesign();
    /// Fills the cap field with the stored cap of the selected connection.
    void doUpdateUsageCapText();
    void clearCache();
    /// Empties the cache and says so for a while.
    void clearCacheButton();
    /// Fades the message in and has it go after a while, or fades it out; a time of zero is the first showing.
    void animateSuccessMessageWithAnimationTime(platform::Seconds duration, bool andAnimatingIn);
    void hideCacheClearedText();
    /// The user changed how connections are named.
    void changeOnlyKeyNicknames();
    /// The user picked another figure for the status item.
    void changeStatusBarDropdown();
    /// The user chose whether the program starts at login; says so where that cannot be stored.
    void changeStartAtLogin();

    // Touch bar

    /// A bar without connections.
    std::shared_ptr<platform::TouchBar> makeTouchBar();
    /// A bar with these connections' items, which may be none.
    std::shared_ptr<platform::TouchBar> makeTouchBarWithArray(std::vector<std::string> const& connectionIdentifiers);
    std::unique_ptr<platform::CustomTouchBarItem> makeItemForIdentifier(std::string_view identifier) override;
    /// Gives the preferences window's bar to the other windows. Always true.
    bool setTouchBarForAllWindows();

    // Appearance

    /// Gives the preferences window the ground of the present appearance.
    void updateDarkAppearance();
    /// Begins to observe the computer's waking, its clock and the appearance.
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
    void followSelection();
    void notify();

    // Schedule
    void armUpdateInterval(std::optional<platform::Date> fireDate, platform::Seconds interval);
    void noteLastUpdate();
    void showDates();
    void tellDates(std::string_view lastUpdate, std::string_view nextUpdate);
    void keepDatesRight(bool visible);

    // Presentation
    void presentReport();
    void showError();
    void showToolTips(UsageFigures const& figures);
    void showLevel(UsageFigures const& figures);
    void showFields(UsageFigures const& figures, std::string_view unit);
    void showMenu(UsageFigures const& figures, std::string_view unit);
    void showWindowTitle();
    std::string statusTitle(UsageFigures const& figures, std::string_view unit) const;
    /// A volume that a missing cap makes unlimited.
    std::string capped(double volume, UsageFigures const& figures, std::string_view unit) const;
    void fadeLevel(double opacity);
    void setLevelHidden(bool hidden);

    // Key management
    void showKeyStatus();
    void acceptLookup(std::optional<std::string> const& key, bool showError);
    platform::Window& addKeyAlertWindow();
    void showLookupFailure();
    void selectFirstKey();
    std::vector<std::string> storedKeyEntries() const;
    /// Whether an entry of the key list has this usage key.
    bool isStored(std::string_view usageKey) const;
    void storeKeyEntries(std::vector<std::string> const& entries);

    // Preferences
    void showCapReading();
    void showStartAtLogin();
    void fadeMessage(double opacity, platform::Seconds duration, platform::Task completion);
    void hideMessageLater();

    // Touch bar
    void showTouchBar(std::vector<std::string> const& connectionIdentifiers);
    /// The identifiers of the connections that have a place in the bar.
    std::vector<std::string> touchBarConnections() const;

    IntervalChoice intervalChoice() const;
    std::string text(std::string_view key) const;
    /// The text with an argument in place of its "%@".
    std::string text(std::string_view key, std::string_view argument) const;
    /// A label and a value with a blank between.
    std::string labelled(std::string_view labelKey, std::string_view value) const;
    CacheData cacheData() const;
    ProviderAddresses addresses() const;

    platform::Platform& platform_;
    Outlets& outlets_;
    platform::StatusItem usageStatusItem_;
    platform::UserDefaults* prefs_ = nullptr;
    platform::NumberFormatter usageFormatter_;

    /// The current report; empty until the first refresh ends, none after one that failed.
    std::optional<platform::Dictionary> usageDictionary_;
    /// The usage key that the current report, or its failure, belongs to; none until the first refresh ends.
    std::optional<std::string> reportKey_;
    /// The current usage key.
    std::string selectedKey_;
    /// The entry that it comes from.
    std::string confirmedEntry_;
    IntervalChoice indexOfSelectedItemUpdateInterval_ = 0;
    std::unique_ptr<platform::Timer> updateInterval_;
    std::unique_ptr<platform::Timer> fixErrorTimer_;
    /// Until the menu tells of the refresh timer.
    std::unique_ptr<platform::Timer> datesTimer_;
    /// While the usage window is open.
    std::unique_ptr<platform::Timer> datesCheck_;
    /// The last update that the menu tells of; none while it tells of none.
    std::optional<platform::Date> shownLastUpdate_;
    /// What the menu's dates were written for.
    struct WrittenDates {
        platform::Date lastUpdate;
        std::optional<platform::Date> nextUpdate;
        std::string dayMark;

        bool operator==(WrittenDates const&) const = default;
    };
    std::optional<WrittenDates> writtenDates_;
    /// A connection was picked from the submenu: useConnection() then stores no cap and leaves the window alone.
    bool usedMenuItemForSelection_ = false;
    /// The status item waits for a refresh.
    bool waiting_ = false;
    bool animationRanAlready_ = false;
    bool touchBarAvailable_ = false;
    std::unique_ptr<DetailedUsageViewController> detailedUsageController_;

    std::vector<platform::Subscription> observations_;
    /// While the user is asked whether to remove a connection.
    platform::Subscription removalObservation_;
};
