// SPDX-License-Identifier: MIT
#pragma once

#include "bench/programs/Clock.h"
#include "bench/programs/OlderTray.h"
#include "bench/programs/Panel.h"
#include "bench/programs/Screen.h"

#include <functional>

/// Provides everything that a program needs to show its status item. It uses no toolkit, so that it shares no pages
/// with the measured program.
class Desktop {
public:
    /// Returns null without a session bus and a display, or if there is another panel or tray.
    static std::unique_ptr<Desktop> open();

    Panel& panel() { return *panel_; }
    Screen const& screen() const { return *screen_; }
    bool hasItem() const { return panel_->hasItem() || tray_->hasItem(); }

    /// Serves programs until the condition holds. Returns false on timeout.
    bool waitFor(std::function<bool()> const& condition, Clock::duration bound);
    /// Serves programs for this time.
    void rest(Clock::duration time);

private:
    Desktop(std::unique_ptr<Panel> panel, std::unique_ptr<Screen> screen, std::unique_ptr<OlderTray> tray);

    std::unique_ptr<Panel> panel_;
    std::unique_ptr<Screen> screen_;
    std::unique_ptr<OlderTray> tray_;
};
