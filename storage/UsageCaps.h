// SPDX-License-Identifier: MIT
#pragma once

#include "platform/Value.h"

#include <optional>
#include <string>
#include <string_view>

namespace platform {
class UserDefaults;
}

/// The usage caps in the settings: a table from key entry to cap text. Main thread only.
class UsageCaps {
public:
    explicit UsageCaps(platform::UserDefaults& userDefaults)
        : userDefaults_(userDefaults)
    {
    }

    std::optional<std::string> usageCapForKey(std::string_view keyEntry) const;
    /// Returns the table with the entry's cap set, or unchanged without a cap or an entry. Stores nothing.
    platform::Dictionary usageCapDictionaryByModifyingCap(
        std::optional<std::string> const& cap, std::optional<std::string> const& forKey) const;
    /// Returns whether the entry had a cap.
    bool doRemoveKeyFromUsageCapDictionary(std::string_view keyEntry);

private:
    /// Empty if there is no table.
    platform::Dictionary table() const;

    platform::UserDefaults& userDefaults_;
};
