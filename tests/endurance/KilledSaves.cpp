// SPDX-License-Identifier: MIT
// Saves that are killed in the middle. USAGE_METER_ROUNDS says how often each kind is.
#include "platform/AtomicFile.h"
#include "platform/PropertyList.h"
#include "platform/UserDefaults.h"
#include "storage/CacheData.h"
#include "tests/support/ManualRunLoop.h"
#include "tests/support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <csignal>
#include <iostream>
#include <set>
#include <sys/ptrace.h>
#include <sys/wait.h>
#include <unistd.h>

namespace fs = std::filesystem;

namespace {

class KilledSaves : public testing::Test {
protected:
    using Save = std::function<void(int number)>;

    static platform::Dictionary content(int number)
    {
        auto const size = static_cast<std::size_t>(number) * 7919 % 100'000;
        return { { "number", number }, { "entries", platform::Array(size % 50, "Home - key") },
            { "text", std::string(size, 'x') } };
    }

    // A process that waits, traced, before it saves.
    static pid_t start(Save const& save, int number)
    {
        pid_t const child = ::fork();
        if (child == 0) {
            ::ptrace(PTRACE_TRACEME, 0, nullptr, nullptr);
            std::raise(SIGSTOP);
            save(number);
            ::_exit(0);
        }
        ::waitpid(child, nullptr, 0);
        return child;
    }

    // Whether the kill came in time.
    static bool kill(pid_t child)
    {
        ::kill(child, SIGKILL);
        int status = 0;
        ::waitpid(child, &status, 0);
        return WIFSIGNALED(status);
    }

    // Each system call counts twice: before it, and after it.
    static bool killAtStop(pid_t child, int stop)
    {
        for (int status = 0; stop > 0; --stop) {
            ::ptrace(PTRACE_SYSCALL, child, nullptr, nullptr);
            ::waitpid(child, &status, 0);
            if (WIFEXITED(status))
                return false;
        }
        return kill(child);
    }

    std::set<std::string> names() const
    {
        std::set<std::string> names;
        for (auto const& item : fs::directory_iterator(file.parent_path()))
            names.insert(item.path().filename());
        return names;
    }

    void expectOldOrNew(Save const& save) const
    {
        char const* const wanted = std::getenv("USAGE_METER_ROUNDS");
        int const rounds = wanted ? std::atoi(wanted) : 200;
        save(0);
        int number = 0, stop = 0, renewed = 0, leftovers = 0;
        for (int kills = 0; kills < rounds;) {
            pid_t const child = start(save, number + 1);
            bool const hit = killAtStop(child, ++stop);
            kills += hit ? 1 : 0;
            stop = hit ? stop : 0;

            auto const stored = platform::readPropertyList(platform::readFile(file).value_or(""));
            ASSERT_TRUE(stored == content(number) || stored == content(number + 1)) << "kill " << kills;
            std::set<std::string> others = names();
            others.erase(file.filename());
            ASSERT_TRUE(others.empty() || others == std::set<std::string> { platform::unfinishedFileName });
            leftovers += hit && !others.empty() ? 1 : 0;
            if (stored == content(number + 1)) {
                ++number;
                renewed += hit ? 1 : 0;
            }
        }
        std::cout << rounds << " kills, " << renewed << " left the new file, " << leftovers << " an unfinished one\n";
        EXPECT_GT(renewed, 0);
        EXPECT_GT(leftovers, 0);
        save(number + 1);
        EXPECT_EQ(names(), std::set<std::string> { file.filename() });
    }

    TemporaryFolder folder;
    fs::path const file = folder.path() / "program" / "file";
    ManualRunLoop runLoop { platform::Date {} };
};

}

TEST_F(KilledSaves, OfSettingsLeaveTheOldOrTheNewOnes)
{
    expectOldOrNew([this](int number) {
        platform::UserDefaults settings(file, runLoop);
        for (auto const& [key, value] : content(number))
            settings.set(key, value);
        settings.flush();
    });
}

TEST_F(KilledSaves, OfTheCacheLeaveTheOldOrTheNewReport)
{
    CacheData const cache(folder.path(), "program", runLoop);
    expectOldOrNew([&cache](int number) { cache.saveCacheFile(content(number), "file"); });
}
