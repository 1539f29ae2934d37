// SPDX-License-Identifier: MIT
#include "storage/StoredKeys.h"

#include "platform/UserDefaults.h"
#include "storage/KeyEntry.h"
#include "storage/SettingsKeys.h"

#include <algorithm>
#include <utility>

std::vector<std::string> StoredKeys::entries() const
{
    auto const* const stored = userDefaults_.get<platform::Array>(settings::tarvoKeys);
    if (!stored)
        return {};
    std::vector<std::string> entries;
    entries.reserve(stored->size());
    for (auto const& value : *stored) {
        if (auto const* const entry = value.as<std::string>())
            entries.push_back(*entry);
    }
    return entries;
}

std::vector<std::string> StoredKeys::usageKeys() const
{
    std::vector<std::string> usageKeys;
    for (auto const& entry : entries()) {
        if (auto key = KeyEntry::parse(entry).key)
            usageKeys.push_back(*std::move(key));
    }
    return usageKeys;
}

bool StoredKeys::hasUsageKey(std::string_view usageKey) const
{
    auto const keys = usageKeys();
    return std::ranges::find(keys, usageKey) != keys.end();
}

void StoredKeys::store(std::vector<std::string> const& entries)
{
    userDefaults_.set(settings::tarvoKeys, platform::Array(entries.begin(), entries.end()));
}
