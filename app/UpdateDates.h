// SPDX-License-Identifier: MIT
#pragma once

#include "platform/Property.h"
#include "platform/RunLoop.h"

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace platform {
struct Platform;
}
struct Outlets;

/// Shows the dates of the last and the next update in the menu and the usage window, and keeps them right while time
/// passes: whenever the menu opens, and while the window is open. Main thread only.
class UpdateDates final {
public:
    /// `nextUpdate` returns when the next automatic update is due, if there is one.
    UpdateDates(
        platform::Platform& platform, Outlets& outlets, std::function<std::optional<platform::Date>()> nextUpdate);

    /// Shows a placeholder until the next showing.
    void showPlaceholder();
    void setLastUpdate(platform::Date lastUpdate) { lastUpdate_ = lastUpdate; }
    /// Shows the dates. Requires a last update.
    void show();
    /// Shows them once the user has had time to see that the program is working.
    void showSoon();

private:
    void refresh();
    void keepCurrent(bool isShown);
    void write(std::string_view lastUpdate, std::string_view nextUpdate);

    platform::Platform& platform_;
    Outlets& outlets_;
    std::function<std::optional<platform::Date>()> nextUpdate_;
    std::optional<platform::Date> lastUpdate_;
    /// What the dates on show were formatted for.
    struct Shown {
        platform::Date lastUpdate;
        std::optional<platform::Date> nextUpdate;
        std::string dayMark;

        bool operator==(Shown const&) const = default;
    };
    std::optional<Shown> shown_;
    std::unique_ptr<platform::Timer> showing_;
    /// Runs while the usage window is open.
    std::unique_ptr<platform::Timer> check_;
    platform::Subscription windowObservation_;
};
