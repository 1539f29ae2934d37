// SPDX-License-Identifier: MIT
#include "platform/AtomicFile.h"
#include "platform/PropertyList.h"
#include "platform/UserDefaults.h"
#include "storage/CacheData.h"
#include "tests/support/ManualRunLoop.h"
#include "tests/support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <csignal>
#include <fstream>

using namespace std::chrono_literals;
using namespace std::string_literals;
using platform::Dictionary;
using platform::readFile;
using platform::UserDefaults;
using platform::writePropertyList;
namespace fs = std::filesystem;

/// The cached reports and the settings on disk.
struct StorageTest : testing::Test {
    static auto rightsIn(fs::path const& place) { return fs::status(place).permissions(); }
    std::optional<Dictionary> settings() const { return platform::readPropertyList(readFile(file).value_or("")); }

    TemporaryFolder around;
    ManualRunLoop loop { platform::Date(1000h) };
    CacheData cache { around.path(), "program", loop };
    fs::path const cached = cache.getCacheDirectory();
    fs::path const folder = around.path() / "config" / "program", file = folder / "settings";
};

TEST_F(StorageTest, AReportIsFreshUntilItsNextUpdateOrForGoodWithoutAnInterval)
{
    auto const now = loop.now();
    std::vector<std::pair<Dictionary, bool>> const cases { { { { "used:download", "1" } }, true },
        { { { "nextUpdate", now + 1s }, { "updateInterval", 2 } }, true },
        { { { "nextUpdate", now }, { "updateInterval", 2 } }, false },
        { { { "nextUpdate", now - 9h }, { "updateInterval", 0 } }, true }, { { { "updateInterval", "0" } }, true },
        { { { "updateInterval", -0.5 } }, true }, { { { "updateInterval", true } }, false } };
    fs::create_directory(cached);
    std::ofstream(cached / "K1") << "<plist><dict><key>updateInterval</key>";
    EXPECT_EQ(cache.retrieveCachedFileWithName("K1"), std::nullopt) << "cut off";
    EXPECT_EQ(rightsIn(cached), fs::perms(0700)) << "closed to others when it is used";
    for (auto const& [report, fresh] : cases) {
        SCOPED_TRACE(writePropertyList(report));
        EXPECT_TRUE(cache.saveCacheFile(report, "K1"));
        EXPECT_EQ(cache.retrieveCachedFileWithName("K1"), fresh ? std::optional(report) : std::nullopt);
        EXPECT_EQ(fs::exists(cached / "K1"), fresh);
    }
}

TEST_F(StorageTest, NothingOutsideTheCacheIsTouched)
{
    fs::path const foreign = around.path() / "foreign";
    fs::create_directory(foreign);
    fs::permissions(foreign, fs::perms(0755));
    std::ofstream(foreign / "K1") << "<plist><dict/></plist>";
    // Under the first name all is as it should be, except that the cache is a link.
    fs::create_directory_symlink(foreign, cached);
    for (std::string const& name :
        { "K1"s, "a\0b"s, ""s, ".."s, "../foreign/K1"s, std::string(platform::unfinishedFileName) }) {
        EXPECT_FALSE(cache.saveCacheFile({}, name)) << name;
        EXPECT_EQ(cache.retrieveCachedFileWithName(name), std::nullopt) << name;
        EXPECT_FALSE(cache.removeCacheFile(name)) << name;
        cache.clearCache();
        fs::remove(cached);
        fs::create_directory(cached);
    }
    EXPECT_EQ(readFile(foreign / "K1"), "<plist><dict/></plist>");
    EXPECT_EQ(rightsIn(foreign), fs::perms(0755));
}

TEST_F(StorageTest, RepairUnlinksOnlyReportsNamedByAKeyInTheCachesFolder)
{
    auto const bytes = writePropertyList({ { "grace:upload", "2" } });
    fs::create_directory(cached);
    for (auto const& [name, content] : { std::pair("K1", bytes), { "program/own", bytes }, { "other", bytes },
             { "cut", bytes.substr(9) }, { "number", writePropertyList({ { "grace:upload", 2 } }) } })
        std::ofstream(around.path() / name) << content;
    fs::create_symlink(around.path() / "other", around.path() / "link");
    cache.fixCacheWithKeyList({ "missing", "number", "cut", "link", "..", "program/own", "K1" });
    EXPECT_FALSE(fs::exists(around.path() / "K1"));
    for (char const* const name : { "program/own", "other", "number", "cut", "link" })
        EXPECT_TRUE(fs::exists(around.path() / name)) << name;
}

TEST_F(StorageTest, TheChangesOfOneTurnAreOneWriteAtItsEnd)
{
    UserDefaults defaults(file, loop), another(file, loop);
    defaults.set("cap", 100);
    defaults.set("name", "Home");
    EXPECT_FALSE(fs::exists(file));
    loop.runQueued();
    EXPECT_EQ(settings(), (Dictionary { { "cap", 100 }, { "name", "Home" } }));
    EXPECT_EQ(rightsIn(folder.parent_path()), fs::perms(0700));
    defaults.remove("cap");
    loop.runQueued();
    EXPECT_EQ(settings(), (Dictionary { { "name", "Home" } }));
    another.set("theirs", 1);
    loop.runQueued();
    defaults.set("name", "Home");
    loop.runQueued();
    EXPECT_EQ(settings(), (Dictionary { { "theirs", 1 } })) << "what is no change is no write";
}

TEST_F(StorageTest, SettingsThatCannotBeReadAreMovedAside)
{
    fs::create_directories(folder);
    std::string const unreadable(platform::maximumFileSize + 1, ' ');
    for (std::string const& content : { ""s, "<plist><dict>"s, unreadable }) {
        std::ofstream(file) << content;
        fs::permissions(folder, fs::perms(0755));
        UserDefaults defaults(file, loop);
        EXPECT_EQ(rightsIn(folder), fs::perms(0700));
        EXPECT_EQ(fs::exists(file), content == unreadable) << "until its place is needed";
        defaults.set("new", 2);
        defaults.flush();
        EXPECT_EQ(settings(), (Dictionary { { "new", 2 } }));
    }
    EXPECT_EQ(readFile(file.string() + ".damaged"), "");
    EXPECT_EQ(readFile(file.string() + ".damaged-2"), "<plist><dict>");
    EXPECT_EQ(fs::file_size(file.string() + ".damaged-3"), unreadable.size());
}

TEST_F(StorageTest, SettingsThatCouldNotBeWrittenAreWrittenOnceTheDisksFaultIsGone)
{
    // How a fault of the file or its folder begins and ends.
    std::vector<std::pair<char const*, char const*>> const faults { { "rm -r ../config", ":" },
        { "mv program aside; touch program", "rm program; mv aside program" },
        { "rm program/settings; mkdir -p program/settings/inside",
            "[ -f program/settings ] || rm -r program/settings" },
        { "rm program/settings; mkfifo program/settings", ":" },
        { "prlimit --fsize=16: --pid $PPID", "prlimit --fsize=unlimited: --pid $PPID" } };
    std::signal(SIGXFSZ, SIG_IGN);
    auto const run = [&](char const* commands) {
        EXPECT_EQ(std::system(("cd " + folder.parent_path().string() + "; " + commands).c_str()), 0) << commands;
    };
    for (auto const& [begin, end] : faults) {
        for (bool const startsAnew : { false, true }) {
            std::optional<UserDefaults> defaults(std::in_place, file, loop);
            defaults->set("number", 1);
            defaults->flush();
            run(begin);
            if (startsAnew)
                defaults.emplace(file, loop);
            defaults->set("number", 2);
            defaults->flush();
            run(end);
            defaults->flush();
            EXPECT_EQ(settings(), (Dictionary { { "number", 2 } })) << begin;
        }
    }
}
