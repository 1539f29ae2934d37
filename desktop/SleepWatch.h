// SPDX-License-Identifier: MIT
#pragma once

#include "platform/RunLoop.h"

/// Notices that the computer slept: time since boot counts sleep, the monotonic clock does not.
class SleepWatch {
public:
    SleepWatch(platform::Seconds sinceBoot, platform::Seconds uptime)
        : slept_(sinceBoot - uptime)
    {
    }

    /// Whether the computer slept since this was last asked. The two clocks are read one after the other, so they may
    /// differ by a little without any sleep.
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
