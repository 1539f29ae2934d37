// SPDX-License-Identifier: MIT
#include "storage/UsageCaps.h"

#include "platform/UserDefaults.h"
#include "storage/SettingsKeys.h"

#include <utility>

std::optional<std::string> UsageCaps::usageCapForKey(std::string_view keyEntry) const
{
    auto const* const table = userDefaults_.get<platform::Dictionary>(settings::usageCapValues);
    auto const* const cap = table ? platform::entry<std::string>(*table, keyEntry) : nullptr;
    return cap ? std::optional(*cap) : std::nullopt;
}

platform::Dictionary UsageCaps::usageCapDictionaryByModifyingCap(
    std::optional<std::string> const& cap, std::optional<std::string> const& forKey) const
{
    auto changed = table();
    if (cap && forKey)
        changed.insert_or_assign(*forKey, *cap);
    return changed;
}

bool UsageCaps::doRemoveKeyFromUsageCapDictionary(std::string_view keyEntry)
{
    auto changed = table();
    auto const found = changed.find(keyEntry);
    if (found == changed.end())
        return false;
    changed.erase(found);
    userDefaults_.set(settings::usageCapValues, std::move(changed));
    return true;
}

platform::Dictionary UsageCaps::table() const
{
    auto const* const table = userDefaults_.get<platform::Dictionary>(settings::usageCapValues);
    return table ? *table : platform::Dictionary {};
}
