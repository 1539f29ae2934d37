// SPDX-License-Identifier: MIT
#include "storage/CacheData.h"

#include "platform/AtomicFile.h"
#include "platform/PropertyList.h"
#include "tests/support/ManualRunLoop.h"
#include "tests/support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <fstream>

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
        { "text", { { "nextUpdate", now - 9h }, { "updateInterval", "0" } }, true },
        { "text of a number", { { "updateInterval", "\t+2.5h" } }, false },
        { "text without a number", { { "updateInterval", "two" } }, true },
        { "a fraction", { { "updateInterval", -0.5 } }, true },
        { "a real number", { { "updateInterval", 1.5 } }, false },
        { "no", { { "updateInterval", false } }, true },
        { "yes", { { "updateInterval", true } }, false },
        { "a list", { { "updateInterval", platform::Array {} } }, false },
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

TEST_F(CacheDataTest, RepairUnlinksOnlyReportsNamedByAKeyInTheCachesFolder)
{
    Dictionary const report { { "grace:upload", "2" } };
    auto const bytes = platform::writePropertyList(report);
    cache.saveCacheFile(report, "own");
    for (char const* const name : { "K1", "other" })
        write(folder.path() / name, bytes);
    write(folder.path() / "number", platform::writePropertyList({ { "grace:upload", 2 }, { "updateInterval", 2 } }));
    write(folder.path() / "cut", bytes.substr(0, bytes.size() - 10));
    fs::create_symlink(folder.path() / "other", folder.path() / "link");
    EXPECT_TRUE(
        cache.fixCacheWithKeyList({ "K1", "own", "missing", "number", "cut", "link", "..", "program/own", "" }));
    EXPECT_FALSE(fs::exists(folder.path() / "K1"));
    for (char const* const name : { "program/own", "other", "number", "cut", "link" })
        EXPECT_TRUE(fs::exists(folder.path() / name)) << name;
}

TEST_F(CacheDataTest, ClosesItsOwnFolderToOthersWhateverItIsUsedFor)
{
    fs::permissions(folder.path(), fs::perms(0755));
    fs::create_directory(cache.getCacheDirectory());
    std::vector<std::function<void()>> const uses { [this] { cache.removeCacheFile("K1"); },
        [this] { cache.saveCacheFile({}, "K1"); }, [this] { cache.retrieveCachedFileWithName("K1"); } };
    for (auto const& use : uses) {
        fs::permissions(cache.getCacheDirectory(), fs::perms(0755));
        use();
        EXPECT_EQ(fs::status(cache.getCacheDirectory()).permissions(), fs::perms(0700));
    }
    EXPECT_EQ(fs::status(folder.path()).permissions(), fs::perms(0755));
}

TEST_F(CacheDataTest, WhatIsSavedCanBeReadWhateverItsShapeAndWhatIsTooLargeIsNotSaved)
{
    std::vector<std::function<platform::Value(std::size_t count)>> const shapes {
        [](auto count) { return std::string(count, 'x'); },
        [](auto count) { return std::string(count, '&'); },
        [](auto count) { return platform::Array(count, platform::Array { "\r" }); },
        [](auto count) {
            Dictionary keys { { std::string(1'000'000, 'k'), true } };
            for (; count > 0; --count)
                keys.emplace(std::to_string(1'000'000 + count), true);
            return keys;
        },
    };
    for (auto const& shape : shapes) {
        auto const report = [&](std::size_t count) { return Dictionary { { "k", shape(count) } }; };
        auto const size = [&](std::size_t count) { return platform::writePropertyList(report(count)).size(); };
        auto const most = (platform::maximumFileSize - size(1)) / (size(2) - size(1)) + 1;
        EXPECT_TRUE(cache.saveCacheFile(report(most), "K1"));
        EXPECT_FALSE(cache.saveCacheFile(report(most + 1), "K1"));
        EXPECT_TRUE(cache.retrieveCachedFileWithName("K1") == report(most)) << &shape - &shapes.front();
    }
}
