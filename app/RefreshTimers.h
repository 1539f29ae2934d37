// SPDX-License-Identifier: MIT
#pragma once

#include "app/NextTimer.h"
#include "platform/RunLoop.h"

#include <memory>
#include <optional>

/// The timers of the next automatic refresh and of the retry after a failure. Main thread only.
class RefreshTimers {
public:
    RefreshTimers(platform::RunLoop& runLoop, platform::Task refresh, platform::Task retry);

    /// Replaces the timer of the automatic refresh. Without a plan there is none.
    void armRefresh(std::optional<TimerPlan> const& plan);
    void armRetry();
    void cancelRetry() { fixErrorTimer_.reset(); }
    void cancelAll();
    /// When the next automatic refresh is due, if there is one.
    std::optional<platform::Date> nextUpdate() const;

private:
    platform::RunLoop& runLoop_;
    platform::Task refresh_;
    platform::Task retry_;
    std::unique_ptr<platform::Timer> updateInterval_;
    std::unique_ptr<platform::Timer> fixErrorTimer_;
};
