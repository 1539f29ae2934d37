// SPDX-License-Identifier: MIT
#include "storage/CacheData.h"

#include "platform/AtomicFile.h"
#include "platform/Descriptor.h"
#include "platform/PropertyList.h"
#include "platform/RunLoop.h"
#include "storage/UsageReport.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

bool isFileName(std::string_view name)
{
    return !name.empty() && name != "." && name != ".." && name != platform::unfinishedFileName
        && name.find_first_of(std::string_view("/\0", 2)) == std::string_view::npos;
}

// The folder, held open so that nothing is done elsewhere if something else replaces it meanwhile. A link in its place
// leads to somebody else's files and is not opened. The files are named after keys, so others must not be able to list
// them.
class HeldFolder {
public:
    explicit HeldFolder(std::filesystem::path const& folder)
        : descriptor_(open(folder.c_str(), O_PATH | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC))
    {
        platform::closeFolderToOthers(folder);
    }

    bool isOpen() const { return descriptor_.isOpen(); }
    std::filesystem::path path() const { return "/proc/self/fd/" + std::to_string(descriptor_.get()); }

private:
    platform::Descriptor descriptor_;
};

bool isFresh(platform::Dictionary const& report, platform::Date now)
{
    auto const* const nextUpdate = platform::entry<platform::Date>(report, reportEntry::nextUpdate);
    if (nextUpdate && *nextUpdate > now)
        return true;
    return updateIntervalOf(report) == 0;
}

bool isRegularFileOfTheUser(std::filesystem::path const& path)
{
    struct stat status {};
    return lstat(path.c_str(), &status) == 0 && S_ISREG(status.st_mode) && status.st_uid == geteuid();
}

bool isReport(std::filesystem::path const& file)
{
    auto const bytes = platform::readFile(file);
    auto const read = bytes ? platform::readPropertyList(*bytes) : std::nullopt;
    return read && hasFigure(*read);
}

}

CacheData::CacheData(
    std::filesystem::path cachesFolder, std::string_view bundleIdentifier, platform::RunLoop const& runLoop)
    : cachesFolder_(std::move(cachesFolder))
    , folder_(cachesFolder_ / bundleIdentifier)
    , runLoop_(runLoop)
{
}

bool CacheData::saveCacheFile(platform::Dictionary const& report, std::string_view withName) const
{
    if (!isFileName(withName) || !platform::makeFolder(folder_))
        return false;
    HeldFolder const folder(folder_);
    return folder.isOpen()
        && platform::writeFileAtomically(folder.path() / withName, platform::writePropertyList(report));
}

std::optional<platform::Dictionary> CacheData::retrieveCachedFileWithName(std::string_view name) const
{
    HeldFolder const folder(folder_);
    if (!isFileName(name) || !folder.isOpen())
        return std::nullopt;
    auto const path = folder.path() / name;
    auto const bytes = platform::readFile(path);
    auto report = bytes ? platform::readPropertyList(*bytes) : std::nullopt;
    if (!report || isFresh(*report, runLoop_.now()))
        return report;

    std::error_code ignored;
    std::filesystem::remove(path, ignored);
    return std::nullopt;
}

bool CacheData::removeCacheFile(std::string_view name) const
{
    HeldFolder const folder(folder_);
    if (!isFileName(name) || !folder.isOpen())
        return false;
    auto const path = folder.path() / name;
    std::error_code ignored;
    if (!std::filesystem::exists(std::filesystem::symlink_status(path, ignored)))
        return false;
    std::filesystem::remove(path, ignored);
    return true;
}

bool CacheData::clearCache() const
{
    HeldFolder const folder(folder_);
    if (!folder.isOpen())
        return true;
    std::error_code ignored;
    std::vector<std::filesystem::path> paths;
    for (std::filesystem::directory_iterator item(folder.path(), ignored), end; item != end; item.increment(ignored))
        paths.push_back(item->path());
    for (auto const& path : paths)
        std::filesystem::remove_all(path, ignored);
    return true;
}

bool CacheData::fixCacheWithKeyList(std::vector<std::string> const& usageKeys) const
{
    for (auto const& key : usageKeys) {
        auto const path = cachesFolder_ / key;
        if (isFileName(key) && isRegularFileOfTheUser(path) && isReport(path))
            unlink(path.c_str());
    }
    return true;
}
