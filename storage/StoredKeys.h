// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace platform {
class UserDefaults;
}

/// The connections in the settings, as key entries in the order in which they were added. Main thread only.
class StoredKeys {
public:
    explicit StoredKeys(platform::UserDefaults& userDefaults)
        : userDefaults_(userDefaults)
    {
    }

    std::vector<std::string> entries() const;
    /// The usage keys of the entries that have one.
    std::vector<std::string> usageKeys() const;
    bool hasUsageKey(std::string_view usageKey) const;
    void store(std::vector<std::string> const& entries);

private:
    platform::UserDefaults& userDefaults_;
};
