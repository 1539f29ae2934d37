// SPDX-License-Identifier: MIT
// The real program in use for USAGE_METER_SECONDS (15 minutes when that is not set), at a refresh a second.
#include "desktop/DesktopRunLoop.h"
#include "tests/support/RunningProgramTest.h"

#include <QElapsedTimer>
#include <QTest>

#include <ctime>
#include <fstream>
#include <iostream>

using namespace std::chrono_literals;

struct LongUse : RunningProgramTest {
    /// The handles, the threads, and the kilobytes of memory that is no file's, and so is nobody else's either.
    std::array<long, 3> cost() const
    {
        std::filesystem::path const process = "/proc/" + std::to_string(program_.processId());
        auto const entriesOf = [&process](char const* folder) {
            return std::distance(std::filesystem::directory_iterator(process / folder), {});
        };
        long kilobytes = 0;
        std::ifstream memory(process / "smaps_rollup");
        for (std::string word; memory >> word;) {
            if (word == "Anonymous:")
                memory >> kilobytes;
        }
        return { entriesOf("fd"), entriesOf("task"), kilobytes };
    }

    /// What a user does in this second; the figure that is asked for is shown at its end.
    void use(int second)
    {
        auto const gigabytes = static_cast<std::uint64_t>(second % 900 + 2);
        bool const fails = second % 30 == 15;
        for (char const* const key : { "secretOne", "secretTwo" })
            provider_->setReply(key,
                { demo::reportBody({ 0, 0, 0, 0, gigabytes * 1'000'000'000, 0 }),
                    fails ? demo::Manner::CutOff : demo::Manner::AtOnce });
        if (second % 10 == 9) {
            ASSERT_TRUE(click(second % 20 == 19 ? home : cottage));
            ASSERT_TRUE(waitFor([this] { return !reader_.title().startsWith(QStringLiteral("Please")); }));
        }
        ASSERT_TRUE(click("Update Now"));
        ASSERT_TRUE(waitForTitle(fails ? "No data" : std::to_string(gigabytes) + "GB"));
    }
};

TEST_F(LongUse, ARefreshASecondLeavesMemoryHandlesAndThreadsLevel)
{
    int const seconds = qEnvironmentVariable("USAGE_METER_SECONDS", QStringLiteral("900")).toInt();
    program_.startWith({ home, cottage });
    ASSERT_TRUE(waitForTitle("57.3GB"));

    std::vector<std::array<long, 3>> costs;
    QElapsedTimer clock;
    clock.start();
    for (int second = 1; second <= seconds; ++second) {
        ASSERT_NO_FATAL_FAILURE(use(second)) << "in second " << second;
        std::ignore = QTest::qWaitFor([&] { return clock.hasExpired(1000LL * second); }, 1000);
        if (second % 60 != 0)
            continue;
        auto const& [handles, threads, kilobytes] = costs.emplace_back(cost());
        std::cout << kilobytes << " kB, " << handles << " handles, " << threads << " threads" << std::endl;
    }
    ASSERT_GE(costs.size(), 5U) << "too short to tell";
    // What is made once is there after the third minute.
    EXPECT_EQ(costs.back()[0], costs[2][0]);
    EXPECT_LE(costs.back()[1], costs[2][1]);
    EXPECT_LT(costs.back()[2], costs[2][2] + 200);
    EXPECT_EQ(program_.output(), "");
}

// Sets the clock to what it is, which the kernel tells of like of any other time.
TEST_F(LongUse, AClockThatIsSetIsHeardOfAtOnceAlsoWhenATimerIsArmedMeanwhile)
{
    DesktopRunLoop loop;
    int told = 0;
    auto const observation = loop.observeClockChange([&told] { ++told; });
    std::unique_ptr<platform::Timer> timer;
    for (int time = 1; time <= 4; ++time) {
        timespec now {};
        clock_gettime(CLOCK_REALTIME, &now);
        if (clock_settime(CLOCK_REALTIME, &now) != 0)
            GTEST_SKIP() << "only root can set the clock";
        if (time % 2 == 0)
            timer = loop.repeat(loop.now() + 1h, 1h, [] { FAIL() << "not due"; });
        ASSERT_TRUE(QTest::qWaitFor([&] { return told == time; }));
    }
}
