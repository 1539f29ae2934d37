// SPDX-License-Identifier: MIT
#include "app/AppDelegate.h"
#include "app/Outlets.h"
#include "platform/UserDefaults.h"
#include "storage/KeyEntry.h"
#include "storage/SettingsKeys.h"
#include "storage/UsageCaps.h"

#include <algorithm>

void AppDelegate::loadKeys()
{
    if (!prefs_->contains(settings::tarvoKeys)) {
        addKeyButton();
        return;
    }

    auto& comboBox = outlets_.tarvoUsageKeysComboBox;
    comboBox.removeAllItems();
    comboBox.addItems(storedKeyEntries());
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
    else if (touchBarAvailable_)
        showTouchBar({});
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

platform::Dictionary AppDelegate::usageCapDictionaryByModifyingCap(
    std::optional<std::string> const& cap, std::optional<std::string> const& forKey) const
{
    return usageCaps::withCap(prefs_->get<platform::Dictionary>(settings::usageCapValues), cap, forKey);
}

bool AppDelegate::doRemoveKeyFromUsageCapDictionary(std::string_view keyEntry)
{
    auto changed = usageCaps::without(prefs_->get<platform::Dictionary>(settings::usageCapValues), keyEntry);
    if (!changed)
        return false;
    prefs_->set(settings::usageCapValues, *std::move(changed));
    return true;
}

std::optional<std::string> AppDelegate::usageCapForKey(std::string_view keyEntry) const
{
    auto const* const table = prefs_->get<platform::Dictionary>(settings::usageCapValues);
    auto const* const cap = table ? platform::entry<std::string>(*table, keyEntry) : nullptr;
    return cap ? std::optional(*cap) : std::nullopt;
}

void AppDelegate::storeKeyEntries(std::vector<std::string> const& entries)
{
    prefs_->set(settings::tarvoKeys, platform::Array(entries.begin(), entries.end()));
}

bool AppDelegate::isStored(std::string_view usageKey) const
{
    return std::ranges::any_of(
        storedKeyEntries(), [usageKey](std::string const& entry) { return KeyEntry::parse(entry).key == usageKey; });
}

std::vector<std::string> AppDelegate::storedKeyEntries() const
{
    std::vector<std::string> entries;
    if (auto const* const stored = prefs_->get<platform::Array>(settings::tarvoKeys)) {
        entries.reserve(stored->size());
        for (auto const& value : *stored) {
            if (auto const* const entry = value.as<std::string>())
                entries.push_back(*entry);
        }
    }
    return entries;
}
