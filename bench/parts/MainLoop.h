// SPDX-License-Identifier: MIT
#pragma once

#include "bench/parts/Benchmarks.h"
#include "desktop/DesktopRunLoop.h"

#include <poll.h>

#include <chrono>

/// Runs the main loop as the program does, asleep between events.
class MainLoop {
public:
    /// Runs until the condition holds, which is checked after each event. Ends the benchmark run after ten seconds.
    template <typename Condition> void runUntil(Condition const& holds)
    {
        auto const bound = Clock::now() + std::chrono::seconds(10);
        while (!holds())
            require(runNext(bound), "what is waited for comes");
    }

    /// Runs for this time.
    void rest(std::chrono::milliseconds time)
    {
        auto const end = Clock::now() + time;
        while (runNext(end)) { }
    }

    DesktopRunLoop runLoop;

private:
    using Clock = std::chrono::steady_clock;

    // Returns false if nothing is due before the end.
    bool runNext(Clock::time_point end)
    {
        auto const left = std::chrono::ceil<std::chrono::milliseconds>(end - Clock::now()).count();
        pollfd due { runLoop.descriptor(), POLLIN, 0 };
        if (left <= 0 || ::poll(&due, 1, static_cast<int>(left)) <= 0)
            return false;
        runLoop.runDue();
        return true;
    }
};
