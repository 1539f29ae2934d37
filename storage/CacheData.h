// SPDX-License-Identifier: MIT
#pragma once

#include "platform/Value.h"

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace platform {
class RunLoop;
}

/// Stores the last usage report of each usage key in a property-list file named after the key. Reading is thread-safe;
/// saving and removing are for the main thread only. Every function rejects a name that is empty, "." or "..", or
/// contains "/" or NUL, and a link in the folder's place. The folder is closed to others whenever it is used.
class CacheData {
public:
    /// Takes the user's cache folder, the name of the program's own folder in it, and the loop whose clock decides
    /// freshness.
    CacheData(std::filesystem::path cachesFolder, std::string_view bundleIdentifier, platform::RunLoop const& runLoop);

    std::filesystem::path const& getCacheDirectory() const { return folder_; }

    /// Replaces the key's file, creating the folder if needed. Returns false, with the old file in place, on failure.
    bool saveCacheFile(platform::Dictionary const& report, std::string_view withName) const;

    /// Returns the key's report if it is fresh: its next update is in the future, or it was saved without automatic
    /// refresh. A stale report is deleted; a file that is not a report is left alone.
    std::optional<platform::Dictionary> retrieveCachedFileWithName(std::string_view name) const;

    /// Removes the key's file, and returns whether it existed.
    bool removeCacheFile(std::string_view name) const;

    /// Removes everything in the folder. Always returns true.
    bool clearCache() const;

    /// Removes the reports that the earliest versions left directly in the user's cache folder. To be removed, a file
    /// must be a regular file of the user's, bear the exact name of a key and contain a report. Always returns true.
    bool fixCacheWithKeyList(std::vector<std::string> const& usageKeys) const;

private:
    std::filesystem::path cachesFolder_;
    std::filesystem::path folder_;
    platform::RunLoop const& runLoop_;
};
