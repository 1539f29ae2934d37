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

/// The last usage report of each usage key, a property-list file each, named by the key. Reading may be done on any
/// thread; saving and removing are for the main one. A name that is empty, "." or "..", or holds "/" or NUL, is refused
/// everywhere. So is a link in the folder's place. The folder is closed to others whenever it is used.
class CacheData {
public:
    /// The user's caches folder, the name of the program's own folder in it, and the loop whose clock decides
    /// freshness.
    CacheData(std::filesystem::path cachesFolder, std::string_view bundleIdentifier, platform::RunLoop const& runLoop);

    std::filesystem::path const& getCacheDirectory() const { return folder_; }

    /// Replaces the key's file, making the folder at first. False, with the former file in place, when it cannot.
    bool saveCacheFile(platform::Dictionary const& report, std::string_view withName) const;

    /// The key's report if it is fresh: its next update lies ahead, or it was saved without automatic refresh. A stale
    /// one is deleted; a file that is no report is left alone.
    std::optional<platform::Dictionary> retrieveCachedFileWithName(std::string_view name) const;

    /// Removes the key's file, and returns whether there was one.
    bool removeCacheFile(std::string_view name) const;

    /// Removes all that lies in the folder. Always true.
    bool clearCache() const;

    /// Removes the reports that the earliest versions left in the user's caches folder itself: only regular files of
    /// the user's own under the exact name of a key, and only what reads as a report. Always true.
    bool fixCacheWithKeyList(std::vector<std::string> const& usageKeys) const;

private:
    std::filesystem::path cachesFolder_;
    std::filesystem::path folder_;
    platform::RunLoop const& runLoop_;
};
