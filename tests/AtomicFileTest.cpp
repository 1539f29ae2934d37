// SPDX-License-Identifier: MIT
#include "platform/AtomicFile.h"

#include "platform/Descriptor.h"
#include "tests/support/FullDisk.h"
#include "tests/support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <chrono>
#include <csignal>
#include <fcntl.h>
#include <fstream>
#include <sys/file.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>
#include <vector>

namespace fs = std::filesystem;
using platform::readFile;
using platform::writeFileAtomically;

namespace {

class AtomicFileTest : public testing::Test {
protected:
    auto entries() const { return std::distance(fs::directory_iterator(folder.path()), fs::directory_iterator()); }

    TemporaryFolder folder;
    fs::path file = folder.path() / "key";
};

}

TEST_F(AtomicFileTest, FilesAndFoldersAreTheirOwnersAlone)
{
    std::ofstream(file) << "old and longer";
    fs::permissions(file, fs::perms::all);
    EXPECT_TRUE(writeFileAtomically(file, "new"));
    EXPECT_EQ(readFile(file), "new");
    EXPECT_EQ(fs::status(file).permissions(), fs::perms(0600));

    fs::path const made = folder.path() / "a" / "b", link = folder.path() / "link";
    EXPECT_TRUE(platform::makeFolder(made));
    for (fs::path const& place : { made.parent_path(), made })
        EXPECT_EQ(fs::status(place).permissions(), fs::perms(0700));
    fs::permissions(made, fs::perms(0755));
    fs::create_directory_symlink(made, link);
    EXPECT_TRUE(platform::makePrivateFolder(link) && platform::makeFolder(made));
    EXPECT_EQ(fs::status(made).permissions(), fs::perms(0755)) << "neither through a link nor by itself";
    EXPECT_TRUE(platform::makePrivateFolder(made));
    EXPECT_EQ(fs::status(made).permissions(), fs::perms(0700));
}

TEST_F(AtomicFileTest, AFailedSaveKeepsTheOldFileAndLeavesNothingBehind)
{
    ASSERT_TRUE(writeFileAtomically(file, "old"));
    withFullDisk([&] { EXPECT_FALSE(writeFileAtomically(file, std::string(1000, 'n'))); });
    EXPECT_FALSE(writeFileAtomically(file, std::string(platform::maximumFileSize + 1, 'n'))) << "nobody would read it";
    EXPECT_EQ(readFile(file), "old");
    fs::create_directories(folder.path() / "taken" / ".unfinished");
    for (fs::path const& place :
        { folder.path() / "taken", folder.path() / "taken" / "key", folder.path() / "missing" / "key", file / "key" })
        EXPECT_FALSE(writeFileAtomically(place, "new")) << place;
    EXPECT_EQ(entries(), 2);
}

TEST_F(AtomicFileTest, OnlyAnotherProcessesSaveHoldsUpASaveAndNotForLong)
{
    // Others may lock a folder or a file that they can open, but not an unfinished file.
    for (auto const& [name, mode] : { std::pair("", 0755), { ".unfinished", 0644 }, { ".unfinished", 0600 } }) {
        std::ofstream(folder.path() / ".unfinished") << "unfinished";
        fs::permissions(folder.path() / name, fs::perms(mode));
        platform::Descriptor const other(::open((folder.path() / name).c_str(), O_RDONLY | O_CLOEXEC));
        ASSERT_EQ(::flock(other.get(), LOCK_EX), 0);
        auto const start = std::chrono::steady_clock::now();
        EXPECT_EQ(writeFileAtomically(file, name), mode != 0600);
        EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(3));
    }
    EXPECT_TRUE(writeFileAtomically(file, "new"));
}

TEST_F(AtomicFileTest, AProcessThatIsBeingStartedHoldsUpNoSave)
{
    std::vector<pid_t> children;
    std::jthread starting([&children] {
        while (children.size() < 50) {
            children.push_back(::fork());
            if (children.back() == 0) {
                ::alarm(30);
                ::pause();
            }
        }
    });
    for (int i = 0; i < 300 && !HasFailure(); ++i)
        EXPECT_TRUE(writeFileAtomically(file, "new"));
    starting.join();
    for (pid_t const child : children) {
        ::kill(child, SIGKILL);
        ::waitpid(child, nullptr, 0);
    }
}

TEST_F(AtomicFileTest, TwoProcessesThatSaveAtOnceNeitherFailNorMixTheirFiles)
{
    auto const startSaving = [this](char letter) {
        pid_t const child = ::fork();
        if (child == 0) {
            for (int i = 0; i < 300; ++i) {
                if (!writeFileAtomically(file, std::string(5000, letter)))
                    ::_exit(1);
            }
            ::_exit(0);
        }
        return child;
    };
    ASSERT_TRUE(writeFileAtomically(file, std::string(5000, 'x')));
    std::vector const children { startSaving('a'), startSaving('b') };
    for (pid_t const child : children) {
        int status = 0;
        while (::waitpid(child, &status, WNOHANG) == 0) {
            auto const content = readFile(file).value_or("");
            ASSERT_TRUE(content.size() == 5000 && content.find_first_not_of(content.front()) == std::string::npos);
        }
        EXPECT_EQ(status, 0);
    }
    EXPECT_EQ(entries(), 1);
}

TEST_F(AtomicFileTest, ALinkPlantedForTheUnfinishedFileIsNotFollowed)
{
    fs::path const victim = folder.path() / "victim";
    std::ofstream(victim) << "precious";
    for (bool const hard : { false, true }) {
        fs::path const planted = folder.path() / ".unfinished";
        hard ? fs::create_hard_link(victim, planted) : fs::create_symlink(victim, planted);
        EXPECT_TRUE(writeFileAtomically(file, "new"));
        EXPECT_EQ(readFile(victim), "precious");
        EXPECT_EQ(entries(), 2);
    }
}
