// SPDX-License-Identifier: MIT
// Tests the real clock, which only root can set.
#include "desktop/DesktopRunLoop.h"
#include "windows/ToolkitLoop.h"

#include <QTest>

#include <gtest/gtest.h>

#include <ctime>

using namespace std::chrono_literals;

// Sets the clock to its current value, which the kernel reports like any other change.
TEST(SetClock, IsHeardOfAtOnceAlsoWhenATimerIsArmedMeanwhile)
{
    DesktopRunLoop loop;
    ToolkitLoop const around(loop);
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
