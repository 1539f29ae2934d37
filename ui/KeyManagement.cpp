// SPDX-License-Identifier: MIT
// The controller's part in confirming, adding and removing connections.
#include "app/AppDelegate.h"
#include "app/Outlets.h"
#include "detail/DetailedUsageViewController.h"
#include "platform/Application.h"
#include "platform/Bundle.h"
#include "platform/Platform.h"
#include "platform/UserDefaults.h"
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
            prefs_->set(settings::usageCapValues,
                usageCaps_.usageCapDictionaryByModifyingCap(outlets_.usageLimit.text.get(), entry));
        outlets_.window.orderOut();
    }
    loadKeys();
    updateUsageWithCache(true);
}

void AppDelegate::closePreferences()
{
    auto const entry = getCurrentlySelectedKey();
    bool const isConfirmed = !entry || outlets_.tarvoUsageKeysComboBox.items.get().empty()
        || (*entry == confirmedEntry_
            && outlets_.usageLimit.text.get() == usageCaps_.usageCapForKey(*entry).value_or(""));
    if (isConfirmed)
        outlets_.window.orderOut();
    else
        useConnection();
}

void AppDelegate::addKeyButton()
{
    showPreferences();
    addKeySheet_.open();
}

void AppDelegate::addKeyAction()
{
    if (KeyEntry::isAcceptable(outlets_.keyNewNickname.text.get(), outlets_.usageID.text.get()))
        doAddKey();
    else
        addKeySheet_.beginAlert({ .messageText = text("FAILURE_BLANK_CODE") });
}

void AppDelegate::doAddKey()
{
    if (addKeyWithNickname(outlets_.keyNewNickname.text.get(), outlets_.usageID.text.get()))
        outlets_.window.endSheet(outlets_.addKeyWindow);
    else
        addKeySheet_.beginAlert({ .messageText = text("FAILURE_KEY_EXISTS") });
    // Refresh even if the key was refused.
    loadKeys();
    updateUsageWithCache(false);
}

bool AppDelegate::addKeyWithNickname(std::string_view nickname, std::string_view withKey)
{
    auto const entry = KeyEntry::format(nickname, withKey);
    auto entries = storedKeys_.entries();
    if (std::ranges::find(entries, entry) != entries.end())
        return false;
    entries.push_back(entry);
    storedKeys_.store(entries);
    prefs_->set(settings::tarvoKeySelected, entry);
    outlets_.tarvoUsageKeysComboBox.text.set(entry);
    outlets_.usageLimit.text.set({});
    loadKeys();
    return true;
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
    auto entries = storedKeys_.entries();
    std::erase(entries, entry);
    if (entries.empty()) {
        prefs_->remove(settings::tarvoKeys);
        prefs_->remove(settings::tarvoKeySelected);
    }
    usageCaps_.doRemoveKeyFromUsageCapDictionary(entry);
    if (auto const key = KeyEntry::parse(entry).key)
        cacheData().removeCacheFile(*key);
    outlets_.usageLimit.text.set({});
    storedKeys_.store(entries);
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

void AppDelegate::viewDailyUsageDataButton(platform::Sender sender)
{
    auto* const* const button = std::get_if<platform::Button*>(&sender);
    if (button && (*button)->tag == detailedUsageButtonTag)
        outlets_.monitorWindow.orderOut();
    if (!detailedUsageController_)
        detailedUsageController_ = std::make_unique<DetailedUsageViewController>(platform_, outlets_.detailedUsage);
    detailedUsageController_->doShowUsageWindow();
    platform_.application.activateIgnoringOtherApps();
}

void AppDelegate::comboBoxSelectionDidChange() { doUpdateUsageCapText(); }
