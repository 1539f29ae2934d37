// SPDX-License-Identifier: MIT
#include "platform/UserDefaults.h"

#include "platform/AtomicFile.h"
#include "platform/PropertyList.h"
#include "tests/support/ManualRunLoop.h"
#include "tests/support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <csignal>
#include <fstream>
#include <unistd.h>

namespace fs = std::filesystem;
using platform::Dictionary;
using platform::readFile;
using platform::UserDefaults;

struct UserDefaultsTest : testing::Test {
    std::optional<Dictionary> stored() const { return platform::readPropertyList(readFile(file).value_or("")); }

    TemporaryFolder around;
    fs::path const folder = around.path() / "config" / "program", file = folder / "settings";
    ManualRunLoop loop { platform::Date {} };
};

TEST_F(UserDefaultsTest, TheChangesOfOneTurnAreOneWriteAtItsEnd)
{
    UserDefaults settings(file, loop), another(file, loop);
    settings.set("cap", 100);
    settings.set("name", "Home");
    EXPECT_FALSE(fs::exists(file));
    loop.runQueued();
    EXPECT_EQ(stored(), (Dictionary { { "cap", 100 }, { "name", "Home" } }));
    settings.remove("cap");
    loop.runQueued();
    EXPECT_EQ(stored(), (Dictionary { { "name", "Home" } }));
    another.set("theirs", 1);
    loop.runQueued();
    settings.set("name", "Home");
    loop.runQueued();
    EXPECT_EQ(stored(), (Dictionary { { "theirs", 1 } })) << "what is no change is no write";
}

TEST_F(UserDefaultsTest, WhatCannotBeReadIsMovedAsideAndNeverOverwritten)
{
    fs::create_directories(folder);
    std::string const unreadable(platform::maximumFileSize + 1, ' ');
    for (std::string const& content : { std::string(), std::string("<plist><dict>"), unreadable }) {
        std::ofstream(file) << content;
        fs::permissions(folder, fs::perms(0755));
        UserDefaults settings(file, loop);
        EXPECT_EQ(fs::status(folder).permissions(), fs::perms(0700));
        EXPECT_EQ(fs::exists(file), content == unreadable) << "until its place is needed";
        settings.set("new", 2);
        settings.flush();
        EXPECT_EQ(stored(), (Dictionary { { "new", 2 } }));
    }
    EXPECT_EQ(readFile(file.string() + ".damaged"), "");
    EXPECT_EQ(readFile(file.string() + ".damaged-2"), "<plist><dict>");
    EXPECT_EQ(fs::file_size(file.string() + ".damaged-3"), unreadable.size());
}

TEST_F(UserDefaultsTest, WhatCouldNotBeWrittenIsWrittenOnceTheDisksFaultIsGone)
{
    // How a fault of the file, of its folder or of the folder around that begins and ends.
    std::vector<std::pair<std::string, std::string>> const faults { { "chmod 0 program", "chmod 700 program" },
        { "chmod 500 program", "chmod 700 program" }, { "rm -r ../config", ":" },
        { "mv program aside; touch program", "rm program; mv aside program" },
        { "rm program/settings; mkdir -p program/settings/inside",
            "[ -f program/settings ] || rm -r program/settings" },
        { "rm program/settings; mkfifo program/settings", ":" },
        { "chmod 0 program/settings", "chmod 600 program/settings" },
        { "prlimit --fsize=16: --pid $PPID", "prlimit --fsize=unlimited: --pid $PPID" } };
    std::signal(SIGXFSZ, SIG_IGN);
    auto const user = ::getuid() == 0 ? 65534 : ::getuid();
    std::ignore = ::chown(around.path().c_str(), user, ::getgid());
    std::optional<UserDefaults> settings;
    int number = 0;
    auto const run = [&](std::string const& commands) {
        EXPECT_EQ(std::system(("cd " + folder.parent_path().string() + "; " + commands).c_str()), 0) << commands;
    };
    auto const save = [&](int newNumber, bool startsAnew = false) {
        // Root could do more to files than anybody else.
        std::ignore = ::seteuid(user);
        if (startsAnew)
            settings.emplace(file, loop);
        settings->set("kept", "in memory");
        settings->set("number", number = newNumber);
        settings->flush();
        std::ignore = ::seteuid(::getuid());
    };
    for (auto const& [begin, end] : faults) {
        for (bool const startsAnew : { false, true }) {
            save(number + 1, true);
            run(begin);
            save(number + 1, startsAnew);
            run(end);
            save(number);
            EXPECT_EQ(stored(), (Dictionary { { "kept", "in memory" }, { "number", number } })) << begin;
        }
    }
}
