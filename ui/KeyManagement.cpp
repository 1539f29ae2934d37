// SPDX-License-Identifier: MIT
// The controller's part in confirming, adding and removing connections.
#include "app/AppDelegate.h"
#include "app/Outlets.h"
#include "detail/DetailedUsageViewController.h"
#include "platform/Application.h"
#include "platform/BackgroundQueues.h"
#include "platform/Bundle.h"
#include "platform/Platform.h"
#include "platform/UrlLoader.h"
#include "platform/UserDefaults.h"
#include "platform/Workspace.h"
#include "services/RetrieveKey.h"
#include "storage/CacheData.h"
#include "storage/KeyEntry.h"
#include "storage/SettingsKeys.h"

#include <algorithm>
#include <utility>

void AppDelegate::useConnection()
{
    bool const isFromSubmenu = std::exchange(usedMenuItemForSelection_, false);
    // A picked item without a text is not a connection; having picked no item at all is allowed.
    if (auto const item = outlets_.tarvoUsageKeysComboBox.objectValueOfSelectedItem(); item && item->empty()) {
        outlets_.window.makeKeyAndOrderFront();
        outlets_.window.beginSheet({ .messageText = text("FAILURE_BLANK_CODE") });
        return;
    }

    if (!isFromSubmenu) {
        if (auto const entry = getCurrentlySelectedKey())
            prefs_->set(
                settings::usageCapValues, usageCapDictionaryByModifyingCap(outlets_.usageLimit.text.get(), entry));
        outlets_.window.orderOut();
    }
    loadKeys();
    updateUsageWithCache(true);
}

void AppDelegate::closePreferences()
{
    auto const entry = getCurrentlySelectedKey();
    bool const isConfirmed = !entry || outlets_.tarvoUsageKeysComboBox.items.get().empty()
        || (*entry == confirmedEntry_ && outlets_.usageLimit.text.get() == usageCapForKey(*entry).value_or(""));
    if (isConfirmed)
        outlets_.window.orderOut();
    else
        useConnection();
}

void AppDelegate::addKeyButton()
{
    showPreferences();
    outlets_.window.beginSheet(outlets_.addKeyWindow);
    checkCurrentKey();
}

void AppDelegate::cancelButton() { outlets_.window.endSheet(outlets_.addKeyWindow); }

void AppDelegate::addKeyAction()
{
    if (KeyEntry::isAcceptable(outlets_.keyNewNickname.text.get(), outlets_.usageID.text.get()))
        doAddKey();
    else
        addKeyAlertWindow().beginSheet({ .messageText = text("FAILURE_BLANK_CODE") });
}

void AppDelegate::doAddKey()
{
    if (addKeyWithNickname(outlets_.keyNewNickname.text.get(), outlets_.usageID.text.get()))
        outlets_.window.endSheet(outlets_.addKeyWindow);
    else
        addKeyAlertWindow().beginSheet({ .messageText = text("FAILURE_KEY_EXISTS") });
    // Refresh even if the key was refused.
    loadKeys();
    updateUsageWithCache(false);
}

bool AppDelegate::addKeyWithNickname(std::string_view nickname, std::string_view withKey)
{
    auto const entry = KeyEntry::format(nickname, withKey);
    auto entries = storedKeyEntries();
    if (std::ranges::find(entries, entry) != entries.end())
        return false;
    entries.push_back(entry);
    storeKeyEntries(entries);
    prefs_->set(settings::tarvoKeySelected, entry);
    outlets_.tarvoUsageKeysComboBox.text.set(entry);
    outlets_.usageLimit.text.set({});
    loadKeys();
    return true;
}

void AppDelegate::checkCurrentKey() { checkCurrentKeyWithError(false); }

void AppDelegate::autoRetrieveCodeButton() { checkCurrentKeyWithError(true); }

void AppDelegate::checkCurrentKeyWithError(bool showError)
{
    outlets_.usageIDStatus.text.set(text("LOOKUP_UNDER_WAY"));
    bool const started = platform_.backgroundQueues.async("tarvobackground", [this, showError] {
        auto key = RetrieveKey(platform_.urlLoader, addresses()).keyForCurrentConnection();
        platform_.runLoop.perform([this, showError, found = std::move(key)] { acceptLookup(found, showError); });
    });
    if (!started)
        acceptLookup(std::nullopt, showError);
}

// The answer is used whenever it arrives, whether or not the sheet is still open.
void AppDelegate::acceptLookup(std::optional<std::string> const& key, bool showError)
{
    if (key)
        outlets_.usageID.text.set(*key);
    else if (showError)
        showLookupFailure();
    // A message about the key itself takes precedence.
    showKeyStatus();
    if (outlets_.usageIDStatus.text.get().empty())
        outlets_.usageIDStatus.text.set(text(key ? "LOOKUP_FOUND" : "AUTO_FAILURE_TITLE"));
}

// Such a key is accepted anyway, and leads to the error state.
void AppDelegate::showKeyStatus()
{
    auto const& key = outlets_.usageID.text.get();
    bool const isUsual = platform::isWellFormedUrl(addresses().usageReport(key));
    outlets_.usageIDStatus.text.set(isUsual ? std::string() : text("KEY_UNUSUAL"));
}

// If the sheet has been closed meanwhile, its alert goes to the window it was attached to.
platform::Window& AppDelegate::addKeyAlertWindow()
{
    return outlets_.addKeyWindow.visible.get() ? outlets_.addKeyWindow : outlets_.window;
}

// One alert covers all lookups that fail before it is answered. A user who has closed both windows is no longer waiting
// for it.
void AppDelegate::showLookupFailure()
{
    auto& window = addKeyAlertWindow();
    auto title = text("AUTO_FAILURE_TITLE");
    if (!window.visible.get() || window.hasAlert(title))
        return;
    window.beginSheet({ .messageText = std::move(title),
        .informativeText = text("AUTO_FAILURE_MESSAGE"),
        .buttons = { text("DISMISS") } });
}

void AppDelegate::removeKeyButton()
{
    auto& comboBox = outlets_.tarvoUsageKeysComboBox;
    if (comboBox.text.get().empty() || comboBox.items.get().empty())
        return;
    // The question is about this connection, so selecting another one withdraws it.
    removalObservation_ = comboBox.text.observeChanges(
        [this](std::string const&) { outlets_.window.endAlerts(text("REMOVE_KEY_CONFIRM_TITLE")); });
    outlets_.window.beginSheet(
        { .messageText = text("REMOVE_KEY_CONFIRM_TITLE"),
            .informativeText = platform_.bundle.localizedString(
                "REMOVE_KEY_CONFIRM_INFORMATIVE_TEXT", getCurrentlySelectedKey().value_or("")),
            .buttons = { text("REMOVE_KEY_CONFIRM_REMOVE_BUTTON"), text("REMOVE_KEY_CONFIRM_DONT_REMOVE_BUTTON") },
            .isDestructive = true },
        [this](int returnCode) { doRemoveKeyAndAlert(returnCode); });
}

void AppDelegate::doRemoveKeyAndAlert(int andReturnCode)
{
    if (andReturnCode != platform::Alert::firstButtonReturn)
        return;

    auto& comboBox = outlets_.tarvoUsageKeysComboBox;
    auto const entry = comboBox.text.get();
    auto entries = storedKeyEntries();
    std::erase(entries, entry);
    if (entries.empty()) {
        prefs_->remove(settings::tarvoKeys);
        prefs_->remove(settings::tarvoKeySelected);
    }
    doRemoveKeyFromUsageCapDictionary(entry);
    if (auto const key = KeyEntry::parse(entry).key)
        cacheData().removeCacheFile(*key);
    outlets_.usageLimit.text.set({});
    storeKeyEntries(entries);
    loadKeys();
    selectFirstKey();

    if (entries.empty())
        updateMenuBarLoading();
    else
        updateUsageWithCache(true);
}

void AppDelegate::selectFirstKey()
{
    auto& comboBox = outlets_.tarvoUsageKeysComboBox;
    if (comboBox.items.get().empty()) {
        comboBox.text.set({});
        return;
    }
    comboBox.selectItemAtIndex(0);
    auto const first = comboBox.items.get().front();
    prefs_->set(settings::tarvoKeySelected, first);
    if (auto key = KeyEntry::parse(first).key)
        selectedKey_ = *std::move(key);
    confirmedEntry_ = first;
    // The submenu was built before there was a selection to mark.
    if (comboBox.items.get().size() >= 2)
        doUpdateSubMenu();
}

void AppDelegate::getUsageCode()
{
    auto const page = addresses().helpPage();
    if (!platform_.workspace.open(page))
        addKeyAlertWindow().beginSheet({ .messageText = text("GET_KEY_FAILURE_TITLE"),
            .informativeText = platform_.bundle.localizedString("GET_KEY_FAILURE_MESSAGE", page) });
}

// Does nothing, since updates come with the system's packages.
void AppDelegate::checkUpdates() { }

void AppDelegate::viewDailyUsageDataButton(platform::Sender sender)
{
    auto* const* const button = std::get_if<platform::Button*>(&sender);
    if (button && (*button)->tag == detailedUsageButtonTag)
        outlets_.monitorWindow.orderOut();
    if (!detailedUsageController_)
        detailedUsageController_ = std::make_unique<DetailedUsageViewController>(platform_, outlets_.detailedUsage);
    detailedUsageController_->doShowUsageWindow();
    if (touchBarAvailable_)
        outlets_.detailedUsage.window.touchBar.set(outlets_.window.touchBar.get());
    platform_.application.activateIgnoringOtherApps();
}

void AppDelegate::comboBoxSelectionDidChange() { doUpdateUsageCapText(); }
