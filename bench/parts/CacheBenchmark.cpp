// SPDX-License-Identifier: MIT
#include "bench/parts/Benchmarks.h"
#include "bench/parts/CannedProvider.h"
#include "platform/AtomicFile.h"
#include "platform/Descriptor.h"
#include "services/UsageData.h"
#include "storage/CacheData.h"
#include "storage/UsageReport.h"
#include "tests/support/ManualRunLoop.h"
#include "tests/support/TemporaryFolder.h"

#include <fcntl.h>
#include <linux/magic.h>
#include <sys/stat.h>
#include <sys/vfs.h>
#include <unistd.h>

namespace {

using namespace std::chrono_literals;

/// A cache on disk with one report.
struct FilledCache {
    FilledCache()
    {
        struct statfs status {};
        require(statfs(folder.path().c_str(), &status) == 0 && status.f_type != TMPFS_MAGIC,
            "temporary files lie on a disk (TMPDIR), where a save has to wait for it");
        CannedProvider provider;
        auto fetched = UsageData(provider, ProviderAddresses("host")).updateUsage(key);
        require(fetched.has_value(), "a report can be read");
        report = *std::move(fetched);
        report.insert_or_assign(reportEntry::lastUpdate, runLoop.now());
        report.insert_or_assign(reportEntry::nextUpdate, runLoop.now() + 2h);
        report.insert_or_assign(reportEntry::updateInterval, 2);
        require(cache.saveCacheFile(report, key), "a report can be saved");
    }

    std::filesystem::path file() const { return cache.getCacheDirectory() / key; }

    static constexpr char const* key = "demohome";
    TemporaryFolder folder;
    ManualRunLoop runLoop { std::chrono::system_clock::now() };
    CacheData cache { folder.path(), "cache", runLoop };
    platform::Dictionary report;
};

void readCache(benchmark::State& state)
{
    FilledCache const filled;
    auto const checked = filled.cache.retrieveCachedFileWithName(FilledCache::key);
    require(checked && checked->size() == filled.report.size(), "the cached report is whole and fresh");
    while (state.KeepRunning()) {
        auto report = filled.cache.retrieveCachedFileWithName(FilledCache::key);
        benchmark::DoNotOptimize(report);
    }
}

void readBare(benchmark::State& state)
{
    FilledCache const filled;
    auto const file = filled.file();
    while (state.KeepRunning()) {
        platform::Descriptor const opened(::open(file.c_str(), O_RDONLY | O_CLOEXEC));
        struct stat status {};
        require(::fstat(opened.get(), &status) == 0 && status.st_size > 0, "the file has a size");
        std::string content(static_cast<std::size_t>(status.st_size), '\0');
        require(::read(opened.get(), content.data(), content.size()) == status.st_size, "the file can be read");
        benchmark::DoNotOptimize(content);
    }
}

void saveCache(benchmark::State& state)
{
    FilledCache const filled;
    while (state.KeepRunning())
        require(filled.cache.saveCacheFile(filled.report, FilledCache::key), "a report can be saved");
}

bool replace(std::filesystem::path const& folderPath, char const* name, std::string const& content)
{
    platform::Descriptor const folder(::open(folderPath.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    {
        platform::Descriptor const file(::openat(
            folder.get(), ".unfinished", O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, S_IRUSR | S_IWUSR));
        if (::write(file.get(), content.data(), content.size()) != static_cast<ssize_t>(content.size())
            || ::fsync(file.get()) != 0)
            return false;
    }
    return ::renameat(folder.get(), ".unfinished", folder.get(), name) == 0 && ::fsync(folder.get()) == 0;
}

// Equally safe: writes and syncs a temporary file, renames it, and syncs the folder.
void saveBare(benchmark::State& state)
{
    FilledCache const filled;
    auto const content = platform::readFile(filled.file());
    require(content.has_value(), "the file can be read");
    while (state.KeepRunning())
        require(replace(filled.cache.getCacheDirectory(), FilledCache::key, *content), "the file can be replaced");
}

}

void addCacheBenchmarks()
{
    add("cache read/ours", &readCache);
    add("cache read/bare", &readBare);
    add("cache save/ours", &saveCache);
    add("cache save/bare", &saveBare);
}
