// SPDX-License-Identifier: MIT
// The controller's part in the status item's menu: the waiting state, the commands and the connection submenu.
#include "app/AppDelegate.h"
#include "app/Outlets.h"
#include "app/TouchBarMaker.h"
#include "platform/Application.h"
#include "platform/Bundle.h"
#include "platform/Platform.h"
#include "platform/UserDefaults.h"
#include "storage/KeyEntry.h"
#include "storage/SettingsKeys.h"

void AppDelegate::updateMenuBarLoading()
{
    display_.showWaiting(getCurrentlySelectedKey().has_value());
    dates_.showPlaceholder();
}

void AppDelegate::clickMenuItem() { outlets_.window.makeKeyAndOrderFront(); }

void AppDelegate::showPreferences()
{
    outlets_.window.makeKeyAndOrderFront();
    platform_.application.activateIgnoringOtherApps();
}

void AppDelegate::showUsageWindow() { outlets_.monitorWindow.makeKeyAndOrderFront(); }

void AppDelegate::updateButton() { updateUsageWithCache(false); }

void AppDelegate::quitButton() { platform_.application.terminate(); }

void AppDelegate::doUpdateSubMenu()
{
    auto const selected = getCurrentlySelectedKey();
    bool const onlyNicknames = outlets_.onlyKeyNicknamesToggle.on.get();
    auto const& entries = outlets_.tarvoUsageKeysComboBox.items.get();
    platform::Menu::Items items;
    items.reserve(entries.size());
    for (auto const& entry : entries) {
        auto item = std::make_shared<platform::MenuItem>();
        item->title.set(onlyNicknames ? KeyEntry::parse(entry).nickname : entry);
        item->tag = static_cast<int>(items.size());
        item->placeholder = platform_.bundle.localizedString("UNNAMED_CONNECTION", std::to_string(items.size() + 1));
        item->on.set(entry == selected);
        item->action = [this](platform::Sender sender) { doSelectSubMenuWithMenuItem(sender); };
        items.push_back(std::move(item));
    }
    outlets_.connectionMenu.setItems(std::move(items));
    if (touchBarMaker_)
        touchBarMaker_->show(entries, selected);
}

void AppDelegate::doSelectSubMenuWithMenuItem(platform::Sender sender)
{
    int index = 0;
    if (auto* const* const item = std::get_if<platform::MenuItem*>(&sender))
        index = (*item)->tag;
    else if (auto* const* const button = std::get_if<platform::Button*>(&sender))
        index = (*button)->tag;

    auto& comboBox = outlets_.tarvoUsageKeysComboBox;
    if (index < 0 || static_cast<std::size_t>(index) >= comboBox.items.get().size())
        return;
    comboBox.selectItemAtIndex(static_cast<std::size_t>(index));
    if (auto entry = getCurrentlySelectedKey())
        prefs_->set(settings::tarvoKeySelected, *std::move(entry));
    usedMenuItemForSelection_ = true;
    useConnection();
}
