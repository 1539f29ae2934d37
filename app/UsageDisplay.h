// SPDX-License-Identifier: MIT
#pragma once

#include "app/UsageFigures.h"
#include "platform/Property.h"

#include <optional>
#include <string>
#include <string_view>

namespace platform {
class StatusItem;
struct Platform;
}
class UsageTexts;
class VolumeFormatter;
struct Outlets;

/// Shows the figures of the selected connection, or why there are none, in the status item, the menu and the usage
/// window. Main thread only.
class UsageDisplay final {
public:
    UsageDisplay(platform::Platform& platform, Outlets& outlets, platform::StatusItem& statusItem,
        VolumeFormatter const& volumeFormatter);

    /// Shows that the provider is being asked, or that there is no connection yet. The last figures stay in the window.
    void showWaiting(bool hasConnection);
    void showFailure();
    /// Shows a report's figures. They are in megabytes.
    void showFigures(UsageFigures const& figures);
    /// Shows the figure that the user chose for the status item, of figures in megabytes.
    void showStatusTitle(UsageFigures const& figures);
    /// Names the connection of a key entry in the usage window's title.
    void showConnection(std::optional<std::string> const& entry);

    bool isWaiting() const { return isWaiting_; }

private:
    std::string text(std::string_view key) const;
    void showHeadlineCaption(int choice);
    void showVolumeLines(std::string_view value);
    void showStatusTitle(UsageTexts const& texts);
    void showTexts(UsageTexts const& texts);
    void showMenuLines();
    void showLevel(UsageFigures const& figures, UsageTexts const& texts);
    void fadeLevel(double opacity);
    void setLevelHidden(bool hidden);

    platform::Platform& platform_;
    Outlets& outlets_;
    platform::StatusItem& statusItem_;
    VolumeFormatter const& volumeFormatter_;
    bool isWaiting_ = false;
    platform::Subscription titleObservation_;
    platform::Subscription choiceObservation_;
};
