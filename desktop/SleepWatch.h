// SPDX-License-Identifier: MIT
#pragma once

#include "platform/RunLoop.h"

/// Detects sleep by comparing the time since boot, which includes sleep, with the monotonic clock, which does not.
class SleepWatch {
public:
    SleepWatch(platform::Seconds sinceBoot, platform::Seconds uptime)
        : slept_(sinceBoot - uptime)
    {
    }

    /// Whether the computer has slept since the last call. The two clocks are not read at the same instant, so a small
    /// difference does not count.
    bool noticesSleep(platform::Seconds sinceBoot, platform::Seconds uptime)
    {
        constexpr platform::Seconds reading { 0.1 };
        platform::Seconds const slept = sinceBoot - uptime;
        if (slept <= slept_ + reading)
            return false;
        slept_ = slept;
        return true;
    }

private:
    platform::Seconds slept_;
};
