// SPDX-License-Identifier: MIT
#include "storage/CacheData.h"

#include "platform/AtomicFile.h"
#include "platform/PropertyList.h"
#include "tests/support/ManualRunLoop.h"
#include "tests/support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <fstream>

using namespace std::chrono_literals;
using namespace std::string_literals;
using platform::Dictionary;
namespace fs = std::filesystem;

struct CacheDataTest : testing::Test {
    fs::path fileOf(std::string const& key) const { return cache.getCacheDirectory() / key; }

    TemporaryFolder folder;
    ManualRunLoop runLoop { platform::Date(1000h) };
    CacheData cache { folder.path(), "program", runLoop };
};

TEST_F(CacheDataTest, AReportIsFreshUntilItsNextUpdateOrForGoodWithoutAnInterval)
{
    auto const now = runLoop.now();
    std::vector<std::pair<Dictionary, bool>> const cases { { { { "used:download", "1" } }, true },
        { { { "nextUpdate", now + 1s }, { "updateInterval", 2 } }, true },
        { { { "nextUpdate", now }, { "updateInterval", 2 } }, false },
        { { { "nextUpdate", now - 9h }, { "updateInterval", 0 } }, true }, { { { "updateInterval", "0" } }, true },
        { { { "updateInterval", "\t+2.5h" } }, false }, { { { "updateInterval", -0.5 } }, true },
        { { { "updateInterval", 1.5 } }, false }, { { { "updateInterval", false } }, true },
        { { { "updateInterval", true } }, false }, { { { "updateInterval", platform::Array {} } }, false } };
    for (auto const& [report, fresh] : cases) {
        SCOPED_TRACE(platform::writePropertyList(report));
        ASSERT_TRUE(cache.saveCacheFile(report, "K1"));
        EXPECT_EQ(cache.retrieveCachedFileWithName("K1"), fresh ? std::optional(report) : std::nullopt);
        EXPECT_EQ(fs::exists(fileOf("K1")), fresh);
    }
}

TEST_F(CacheDataTest, AFileThatIsNoReportStaysUntilASaveReplacesIt)
{
    ASSERT_TRUE(platform::makeFolder(cache.getCacheDirectory()));
    std::ofstream(fileOf("K1")) << "<plist><dict><key>updateInterval</key>";
    EXPECT_EQ(cache.retrieveCachedFileWithName("K1"), std::nullopt);
    EXPECT_TRUE(fs::exists(fileOf("K1")));
    EXPECT_TRUE(cache.saveCacheFile({ { "k", "v" } }, "K1"));
    EXPECT_EQ(cache.retrieveCachedFileWithName("K1"), (Dictionary { { "k", "v" } }));
}

TEST_F(CacheDataTest, NothingOutsideItsFolderIsTouched)
{
    fs::create_directory(folder.path() / "foreign");
    std::ofstream(folder.path() / "foreign" / "K1") << "<plist><dict/></plist>";
    auto const expectRefused = [&](std::string const& name) {
        EXPECT_FALSE(cache.saveCacheFile({}, name)) << name;
        EXPECT_EQ(cache.retrieveCachedFileWithName(name), std::nullopt) << name;
        EXPECT_FALSE(cache.removeCacheFile(name)) << name;
    };
    fs::create_directory_symlink(folder.path() / "foreign", cache.getCacheDirectory());
    expectRefused("K1");
    cache.clearCache();
    fs::remove(cache.getCacheDirectory());
    fs::create_directory(cache.getCacheDirectory());
    for (std::string const& name : { "a\0b"s, ""s, ".."s, "../foreign/K1"s, std::string(platform::unfinishedFileName) })
        expectRefused(name);
    EXPECT_EQ(platform::readFile(folder.path() / "foreign" / "K1"), "<plist><dict/></plist>");
}

TEST_F(CacheDataTest, RemovesOneFileOrAll)
{
    for (char const* const key : { "K1", "K2" })
        EXPECT_TRUE(cache.saveCacheFile({}, key));
    fs::create_directories(fileOf("folder") / "deep");
    EXPECT_TRUE(cache.removeCacheFile("K1"));
    EXPECT_FALSE(cache.removeCacheFile("K1"));
    EXPECT_TRUE(fs::exists(fileOf("K2")));
    EXPECT_TRUE(cache.clearCache());
    EXPECT_TRUE(fs::is_empty(cache.getCacheDirectory()));
}

TEST_F(CacheDataTest, RepairUnlinksOnlyReportsNamedByAKeyInTheCachesFolder)
{
    Dictionary const report { { "grace:upload", "2" } };
    auto const bytes = platform::writePropertyList(report);
    cache.saveCacheFile(report, "own");
    for (auto const& [name, content] : { std::pair("K1", bytes), { "other", bytes }, { "cut", bytes.substr(9) },
             { "number", platform::writePropertyList({ { "grace:upload", 2 } }) } })
        std::ofstream(folder.path() / name) << content;
    fs::create_symlink(folder.path() / "other", folder.path() / "link");
    cache.fixCacheWithKeyList({ "missing", "number", "cut", "link", "own", "..", "program/own", "K1" });
    EXPECT_FALSE(fs::exists(folder.path() / "K1"));
    for (char const* const name : { "program/own", "other", "number", "cut", "link" })
        EXPECT_TRUE(fs::exists(folder.path() / name)) << name;
}

TEST_F(CacheDataTest, ClosesItsOwnFolderToOthersWheneverItIsUsed)
{
    fs::create_directory(cache.getCacheDirectory());
    fs::permissions(cache.getCacheDirectory(), fs::perms(0755));
    cache.retrieveCachedFileWithName("K1");
    EXPECT_EQ(fs::status(cache.getCacheDirectory()).permissions(), fs::perms(0700));
}
