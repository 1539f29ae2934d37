// SPDX-License-Identifier: MIT
#include "app/RefreshTimers.h"

#include <chrono>
#include <utility>

namespace {

constexpr platform::Seconds retryDelay = std::chrono::seconds(30);

}

RefreshTimers::RefreshTimers(platform::RunLoop& runLoop, platform::Task refresh, platform::Task retry)
    : runLoop_(runLoop)
    , refresh_(std::move(refresh))
    , retry_(std::move(retry))
{
}

void RefreshTimers::armRefresh(std::optional<TimerPlan> const& plan)
{
    updateInterval_ = plan ? runLoop_.repeat(plan->first, plan->period, refresh_) : nullptr;
}

void RefreshTimers::armRetry() { fixErrorTimer_ = runLoop_.after(retryDelay, retry_); }

void RefreshTimers::cancelAll()
{
    updateInterval_.reset();
    fixErrorTimer_.reset();
}

std::optional<platform::Date> RefreshTimers::nextUpdate() const
{
    return updateInterval_ ? std::optional(updateInterval_->fireDate()) : std::nullopt;
}
