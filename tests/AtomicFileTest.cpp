// SPDX-License-Identifier: MIT
#include "platform/AtomicFile.h"

#include "platform/Descriptor.h"
#include "tests/support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <csignal>
#include <fcntl.h>
#include <fstream>
#include <ranges>
#include <sys/file.h>
#include <sys/ptrace.h>
#include <sys/wait.h>

namespace fs = std::filesystem;
using platform::readFile;
using platform::writeFileAtomically;

struct AtomicFileTest : testing::Test {
    auto entries() const { return std::distance(fs::directory_iterator(folder.path()), fs::directory_iterator()); }

    static pid_t startProcess(std::function<bool()> const& task)
    {
        pid_t const process = ::fork();
        if (process == 0)
            ::_exit(task() ? 0 : 1);
        return process;
    }

    TemporaryFolder folder;
    fs::path const file = folder.path() / "key";
    fs::path const unfinished = folder.path() / platform::unfinishedFileName;
};

TEST_F(AtomicFileTest, AFailedSaveKeepsTheOldFileAlone)
{
    std::string const largest(platform::maximumFileSize, 'o');
    ASSERT_TRUE(writeFileAtomically(file, largest));
    // For root too, a write fails as on a full disk.
    std::signal(SIGXFSZ, SIG_IGN);
    ASSERT_EQ(std::system("prlimit --fsize=16: --pid $PPID"), 0);
    EXPECT_FALSE(writeFileAtomically(file, largest));
    ASSERT_EQ(std::system("prlimit --fsize=unlimited: --pid $PPID"), 0);
    EXPECT_FALSE(writeFileAtomically(file, largest + 'n')) << "nobody would read it";
    EXPECT_TRUE(readFile(file) == largest);
    fs::create_directories(folder.path() / "taken" / platform::unfinishedFileName);
    for (char const* const place : { "taken", "taken/key", "missing/key", "key/key" })
        EXPECT_FALSE(writeFileAtomically(folder.path() / place, "new")) << place;
    EXPECT_EQ(entries(), 2);
}

TEST_F(AtomicFileTest, OnlyAnotherProcessesSaveHoldsUpASaveForAMoment)
{
    // Others may lock a folder or a file that they can open, but not an unfinished file.
    for (auto const& [place, mode] : { std::pair(folder.path(), 0755), { unfinished, 0644 }, { unfinished, 0600 } }) {
        std::ofstream(unfinished) << "unfinished";
        fs::permissions(place, fs::perms(mode));
        platform::Descriptor const other(::open(place.c_str(), O_RDONLY | O_CLOEXEC));
        ASSERT_EQ(::flock(other.get(), LOCK_EX), 0);
        auto const start = std::chrono::steady_clock::now();
        EXPECT_EQ(writeFileAtomically(file, "new"), mode != 0600) << place << mode;
        EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(3));
    }
    EXPECT_TRUE(writeFileAtomically(file, "new"));
}

TEST_F(AtomicFileTest, TwoProcessesThatSaveAtOnceNeitherFailNorMixTheirFiles)
{
    auto const startSaving = [this](char letter) {
        auto const save = [&](int) { return writeFileAtomically(file, std::string(5000, letter)); };
        return startProcess([&] { return std::ranges::all_of(std::views::iota(0, 300), save); });
    };
    ASSERT_TRUE(writeFileAtomically(file, std::string(5000, 'x')));
    for (int status = 0; pid_t const process : { startSaving('a'), startSaving('b') }) {
        while (::waitpid(process, &status, WNOHANG) == 0) {
            auto const content = readFile(file).value_or("");
            ASSERT_TRUE(content.size() == 5000 && content.find_first_not_of(content.front()) == std::string::npos);
        }
        EXPECT_EQ(status, 0);
    }
    EXPECT_EQ(entries(), 1);
}

TEST_F(AtomicFileTest, ASaveThatIsKilledLeavesTheOldFileOrTheNewOne)
{
    ASSERT_TRUE(writeFileAtomically(file, "0"));
    int number = 0, kills = 0, stop = 1;
    while (kills < 200) {
        pid_t const process = startProcess([&] {
            ::ptrace(PTRACE_TRACEME, 0, nullptr, nullptr);
            std::raise(SIGSTOP);
            return writeFileAtomically(file, std::to_string(number + 1));
        });
        // A system call is a stop before it, and another after it.
        int status = 0;
        for (int stops = 1; ::waitpid(process, &status, 0), WIFSTOPPED(status); ++stops)
            stops < stop ? ::ptrace(PTRACE_SYSCALL, process, nullptr, nullptr) : ::kill(process, SIGKILL);
        kills += WIFSIGNALED(status);
        stop = WIFSIGNALED(status) ? stop + 1 : 1;
        auto const stored = readFile(file);
        number += stored == std::to_string(number + 1);
        ASSERT_EQ(stored, std::to_string(number)) << kills;
        ASSERT_EQ(entries(), 1 + fs::exists(unfinished));
    }
    EXPECT_GT(number, 0);
    EXPECT_TRUE(writeFileAtomically(file, "new"));
    EXPECT_EQ(entries(), 1);
}

TEST_F(AtomicFileTest, ALinkPlantedForTheUnfinishedFileIsNotFollowed)
{
    fs::path const victim = folder.path() / "victim";
    std::ofstream(victim) << "precious";
    for (bool const hard : { false, true }) {
        hard ? fs::create_hard_link(victim, unfinished) : fs::create_symlink(victim, unfinished);
        EXPECT_TRUE(writeFileAtomically(file, "new"));
        EXPECT_EQ(readFile(victim), "precious");
        EXPECT_EQ(entries(), 2);
    }
}
