// SPDX-License-Identifier: MIT
#include "storage/CacheData.h"

#include "platform/AtomicFile.h"
#include "tests/support/DiskFaults.h"
#include "tests/support/ManualRunLoop.h"
#include "tests/support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <fcntl.h>
#include <thread>

using namespace std::chrono_literals;
using platform::Dictionary;
namespace fs = std::filesystem;

namespace {

class CacheDataTest : public ::testing::Test {
protected:
    fs::path fileOf(std::string const& key) const { return cache.getCacheDirectory() / key; }
    static void write(fs::path const& path, std::string const& text) { std::ofstream(path) << text; }

    TemporaryFolder folder;
    ManualRunLoop runLoop { platform::Date(1000h) };
    CacheData cache { folder.path(), "program", runLoop };
};

}

TEST_F(CacheDataTest, IsFreshUntilTheNextUpdateOrForGoodWithoutAnInterval)
{
    auto const now = runLoop.now();
    std::vector<std::tuple<char const*, Dictionary, bool>> const cases {
        { "due later", { { "nextUpdate", now + 1s }, { "updateInterval", 2 } }, true },
        { "due this moment", { { "nextUpdate", now }, { "updateInterval", 2 } }, false },
        { "overdue, but never refreshed", { { "nextUpdate", now - 9h }, { "updateInterval", 0 } }, true },
        { "an interval and no due time", { { "updateInterval", 1 } }, false },
        { "an interval that is no number", { { "nextUpdate", now - 9h }, { "updateInterval", "0" } }, false },
        { "neither", { { "used:download", "1" } }, true },
    };
    for (auto const& [what, report, fresh] : cases) {
        ASSERT_TRUE(cache.saveCacheFile(report, "K1"));
        EXPECT_EQ(cache.retrieveCachedFileWithName("K1"), fresh ? std::optional(report) : std::nullopt) << what;
        EXPECT_EQ(fs::exists(fileOf("K1")), fresh) << what;
    }
}

TEST_F(CacheDataTest, LeavesAFileThatIsNoReportUntilASaveReplacesIt)
{
    ASSERT_TRUE(platform::makePrivateFolder(cache.getCacheDirectory()));
    write(fileOf("K1"), "<plist><dict><key>updateInterval</key>");
    EXPECT_EQ(cache.retrieveCachedFileWithName("K1"), std::nullopt);
    EXPECT_TRUE(fs::exists(fileOf("K1")));
    EXPECT_TRUE(cache.saveCacheFile({ { "used:upload", "2" } }, "K1"));
    EXPECT_EQ(cache.retrieveCachedFileWithName("K1"), (Dictionary { { "used:upload", "2" } }));
}

TEST_F(CacheDataTest, RefusesNamesThatAreNoFileNames)
{
    write(folder.path() / "neighbour", "");
    for (std::string const& name :
        { std::string("a\0b", 3), std::string(), std::string(".."), std::string("../neighbour"), std::string("a/b") }) {
        EXPECT_FALSE(cache.saveCacheFile({}, name));
        EXPECT_EQ(cache.retrieveCachedFileWithName(name), std::nullopt);
        EXPECT_FALSE(cache.removeCacheFile(name));
    }
    EXPECT_TRUE(fs::exists(folder.path() / "neighbour"));
}

TEST_F(CacheDataTest, RemovesOneFileOrAllButNothingThroughALink)
{
    auto const foreign = folder.path() / "foreign";
    fs::create_directory(foreign);
    write(foreign / "K1", "<plist><dict/></plist>");
    fs::create_directory_symlink(foreign, cache.getCacheDirectory());
    EXPECT_FALSE(cache.saveCacheFile({}, "K2"));
    EXPECT_EQ(cache.retrieveCachedFileWithName("K1"), std::nullopt);
    EXPECT_FALSE(cache.removeCacheFile("K1"));
    cache.clearCache();
    EXPECT_TRUE(fs::exists(foreign / "K1"));
    fs::remove(cache.getCacheDirectory());

    for (char const* const key : { "K1", "K2" })
        cache.saveCacheFile({}, key);
    fs::create_directories(fileOf("folder") / "deep");
    EXPECT_TRUE(cache.removeCacheFile("K1"));
    EXPECT_FALSE(fs::exists(fileOf("K1")));
    EXPECT_TRUE(cache.clearCache());
    EXPECT_TRUE(fs::is_empty(cache.getCacheDirectory()));
}

TEST_F(CacheDataTest, TouchesNoOtherFolderWhoseLinkTakesThePlaceOfItsOwnMeanwhile)
{
    auto const foreign = folder.path() / "foreign", link = folder.path() / "link";
    fs::create_directory(foreign);
    fs::create_directory_symlink(foreign, link);
    ASSERT_TRUE(cache.saveCacheFile({}, "K1"));
    write(foreign / "K1", "precious");
    std::jthread const swapping([&](std::stop_token const& end) {
        while (!end.stop_requested())
            renameat2(AT_FDCWD, link.c_str(), AT_FDCWD, cache.getCacheDirectory().c_str(), RENAME_EXCHANGE);
    });
    for (int i = 0; i < 1000; ++i) {
        cache.saveCacheFile({ { "updateInterval", 1 } }, "K1");
        i % 2 ? cache.removeCacheFile("K1") : cache.clearCache();
        ASSERT_EQ(platform::readFile(foreign / "K1"), "precious") << i;
    }
}

TEST_F(CacheDataTest, TheNextReportIsSavedWhenADiskFaultIsGone)
{
    CacheData const nested(folder.path() / "caches", "program", runLoop);
    Dictionary const report { { "used:upload", "2" } };
    auto const save = [&] { EXPECT_TRUE(nested.saveCacheFile(report, "K1")); };
    auto const meetFault = [&] {
        nested.saveCacheFile({}, "K1");
        nested.retrieveCachedFileWithName("K1");
        nested.removeCacheFile("K2");
    };
    withEachDiskFault(nested.getCacheDirectory() / "K1", save, meetFault, [&] {
        save();
        EXPECT_EQ(nested.retrieveCachedFileWithName("K1"), report);
        nested.clearCache();
        EXPECT_TRUE(fs::is_empty(nested.getCacheDirectory()));
    });
}

TEST_F(CacheDataTest, RepairUnlinksOnlyRegularFilesNamedByAKeyInTheCachesFolder)
{
    cache.saveCacheFile({}, "own");
    for (char const* const name : { "K1", "other" })
        write(folder.path() / name, "");
    fs::create_directory(folder.path() / "fontconfig");
    fs::create_symlink(folder.path() / "other", folder.path() / "link");
    EXPECT_TRUE(cache.fixCacheWithKeyList({ "K1", "own", "missing", "fontconfig", "link", "..", "program/own", "" }));
    EXPECT_FALSE(fs::exists(folder.path() / "K1"));
    for (char const* const name : { "program/own", "other", "fontconfig", "link" })
        EXPECT_TRUE(fs::exists(folder.path() / name)) << name;
}
