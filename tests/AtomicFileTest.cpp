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

    EXPECT_TRUE(platform::makePrivateFolder(folder.path() / "a" / "b"));
    EXPECT_EQ(fs::status(folder.path() / "a").permissions(), fs::perms(0700));
    EXPECT_EQ(fs::status(folder.path() / "a" / "b").permissions(), fs::perms(0700));
}

TEST_F(AtomicFileTest, AFailedSaveKeepsTheOldFileAndLeavesNothingBehind)
{
    ASSERT_TRUE(writeFileAtomically(file, "old"));
    withFullDisk([&] { EXPECT_FALSE(writeFileAtomically(file, std::string(1000, 'n'))); });
    EXPECT_FALSE(writeFileAtomically(file, std::string(16UL * 1024 * 1024 + 1, 'n'))) << "nobody would read it";
    EXPECT_EQ(readFile(file), "old");
    fs::create_directories(folder.path() / "taken" / "inside");
    for (fs::path const& place : { folder.path() / "taken", folder.path() / "missing" / "key", file / "key" })
        EXPECT_FALSE(writeFileAtomically(place, "new")) << place;
    EXPECT_EQ(entries(), 2);
}

TEST_F(AtomicFileTest, AFolderThatAnotherProcessHoldsIsGivenUpSoon)
{
    ASSERT_TRUE(writeFileAtomically(file, "old"));
    {
        platform::Descriptor const other(::open(folder.path().c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
        ASSERT_EQ(::flock(other.get(), LOCK_EX), 0);
        auto const start = std::chrono::steady_clock::now();
        EXPECT_FALSE(writeFileAtomically(file, "new"));
        EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(3));
        EXPECT_EQ(readFile(file), "old");
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

TEST_F(AtomicFileTest, OnlyRegularFilesOfABoundedSizeAreRead)
{
    std::ofstream(file) << "";
    EXPECT_EQ(readFile(file), "");
    fs::resize_file(file, 16UL * 1024 * 1024 + 1);
    for (fs::path const& other : { file, folder.path(), folder.path() / "missing", fs::path("/dev/zero") })
        EXPECT_FALSE(readFile(other)) << other;
}
