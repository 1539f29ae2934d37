// SPDX-License-Identifier: MIT
#pragma once

#include "platform/Sender.h"
#include "platform/TouchBar.h"

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace platform {
class Bundle;
}
struct Outlets;

/// Makes the touch bar that all windows share: two commands, and a button for each of the first ten of several
/// connections. Main thread only.
class TouchBarMaker final : private platform::TouchBarDelegate {
public:
    struct Actions {
        platform::Action updateNow;
        platform::Action showDailyUsage;
        /// Its sender is a button whose tag is the connection's position in the key list.
        platform::Action selectConnection;
    };

    TouchBarMaker(platform::Bundle const& bundle, Outlets& outlets, Actions actions);

    /// Gives all windows a bar with these key entries, if any.
    void show(std::vector<std::string> const& entries, std::optional<std::string> const& selected);

private:
    std::shared_ptr<platform::TouchBar> makeTouchBarWithArray(std::vector<std::string> const& connectionIdentifiers);
    void setTouchBarForAllWindows();
    std::unique_ptr<platform::CustomTouchBarItem> makeItemForIdentifier(std::string_view identifier) override;

    platform::Bundle const& bundle_;
    Outlets& outlets_;
    Actions actions_;
};
