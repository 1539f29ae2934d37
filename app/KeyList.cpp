// SPDX-License-Identifier: MIT
#include "app/AppDelegate.h"
#include "app/Outlets.h"
#include "app/TouchBarMaker.h"
#include "platform/UserDefaults.h"
#include "storage/KeyEntry.h"
#include "storage/SettingsKeys.h"

void AppDelegate::loadKeys()
{
    if (!prefs_->contains(settings::tarvoKeys)) {
        addKeyButton();
        return;
    }

    auto& comboBox = outlets_.tarvoUsageKeysComboBox;
    comboBox.removeAllItems();
    comboBox.addItems(storedKeys_.entries());
    std::size_t const count = comboBox.items.get().size();
    if (count == 0) {
        addKeyButton();
        comboBox.text.set({});
    } else {
        confirmedEntry_ = comboBox.text.get();
        if (auto key = KeyEntry::parse(confirmedEntry_).key)
            selectedKey_ = *std::move(key);
    }

    bool const hasChoice = count >= 2;
    outlets_.changeConnectionMenuItem->hidden.set(!hasChoice);
    if (hasChoice)
        doUpdateSubMenu();
    else if (touchBarMaker_)
        touchBarMaker_->show({}, std::nullopt);
}

std::optional<std::string> AppDelegate::getCurrentlySelectedKey() const
{
    auto const& comboBox = outlets_.tarvoUsageKeysComboBox;
    if (auto item = comboBox.objectValueOfSelectedItem(); item && !item->empty())
        return item;
    // A text that matches no item counts as selected too.
    if (auto const& shown = comboBox.text.get(); !shown.empty())
        return shown;
    return std::nullopt;
}
