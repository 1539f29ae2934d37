// SPDX-License-Identifier: MIT
#include "platform/UserDefaults.h"

#include "platform/AtomicFile.h"
#include "platform/PropertyList.h"
#include "tests/support/DiskFaults.h"
#include "tests/support/ManualRunLoop.h"
#include "tests/support/TemporaryFolder.h"

#include <gtest/gtest.h>

namespace fs = std::filesystem;
using platform::Dictionary;
using platform::readFile;
using platform::UserDefaults;

namespace {

class UserDefaultsTest : public testing::Test {
protected:
    std::optional<Dictionary> stored() const { return platform::readPropertyList(readFile(file).value_or("")); }

    TemporaryFolder temporary;
    fs::path file = temporary.path() / "preferences.plist";
    ManualRunLoop loop { platform::Date {} };
};

}

TEST_F(UserDefaultsTest, TheChangesOfOneTurnAreOneWriteAtItsEnd)
{
    UserDefaults settings(file, loop);
    settings.set("cap", 100);
    settings.set("name", "Home");
    settings.remove("cap");
    EXPECT_FALSE(fs::exists(file));
    loop.runQueued();
    EXPECT_EQ(stored(), (Dictionary { { "name", "Home" } }));

    UserDefaults another(file, loop);
    settings.set("ours", 1);
    loop.runQueued();
    another.set("theirs", 1);
    loop.runQueued();
    EXPECT_EQ(stored(), (Dictionary { { "name", "Home" }, { "theirs", 1 } })) << "the last writer wins";
}

TEST_F(UserDefaultsTest, DamagedFilesAreMovedAsideAndNoneIsOverwritten)
{
    for (char const* content : { "", "<plist><dict>" }) {
        std::ofstream(file) << content;
        UserDefaults settings(file, loop);
        settings.set("key", content);
        settings.flush();
        EXPECT_EQ(stored(), (Dictionary { { "key", content } }));
    }
    EXPECT_EQ(readFile(file.string() + ".damaged"), "");
    EXPECT_EQ(readFile(file.string() + ".damaged-2"), "<plist><dict>");
}

TEST_F(UserDefaultsTest, WhatCannotBeReadStaysUntilItsPlaceIsNeeded)
{
    std::ofstream(file) << std::string(platform::maximumFileSize + 1, ' ');
    fs::permissions(temporary.path(), fs::perms(0755));
    UserDefaults settings(file, loop);
    EXPECT_EQ(fs::status(temporary.path()).permissions(), fs::perms(0700));
    EXPECT_TRUE(fs::exists(file));
    settings.set("new", 2);
    loop.runQueued();
    EXPECT_EQ(stored(), (Dictionary { { "new", 2 } }));
    EXPECT_EQ(fs::file_size(file.string() + ".damaged"), platform::maximumFileSize + 1);
}

TEST_F(UserDefaultsTest, TheNextChangeIsWrittenWhenADiskFaultIsGone)
{
    file = temporary.path() / "config" / "program" / "preferences.plist";
    std::optional<UserDefaults> settings;
    for (bool const startsAnew : { false, true }) {
        int number = 0;
        auto const change = [&] {
            settings->set("number", ++number);
            settings->flush();
        };
        auto const start = [&] {
            settings.emplace(file, loop);
            settings->set("kept", "in memory");
            change();
        };
        auto const meetFault = [&] { startsAnew ? start() : change(); };
        withEachDiskFault(file, start, meetFault, [&] {
            change();
            EXPECT_EQ(stored(), (Dictionary { { "kept", "in memory" }, { "number", number } }));
        });
    }
}
