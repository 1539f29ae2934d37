// SPDX-License-Identifier: MIT
#pragma once

#include "bench/programs/Clock.h"
#include "bench/programs/OlderTray.h"
#include "bench/programs/Panel.h"
#include "bench/programs/Screen.h"

#include <functional>

/// What a program finds when it looks for a place for its status item. It has nothing of a toolkit in it, so that it
/// shares no pages with what is measured.
class Desktop {
public:
    /// Nothing without a session bus and a display, or when another panel or tray is there.
    static std::unique_ptr<Desktop> open();

    Panel& panel() { return *panel_; }
    Screen const& screen() const { return *screen_; }
    bool hasItem() const { return panel_->hasItem() || tray_->hasItem(); }

    /// Serves programs until the answer is yes; false when that takes longer than the bound.
    bool waitFor(std::function<bool()> const& condition, Clock::duration bound);
    /// Serves programs for this time.
    void rest(Clock::duration time);

private:
    Desktop(std::unique_ptr<Panel> panel, std::unique_ptr<Screen> screen, std::unique_ptr<OlderTray> tray);

    std::unique_ptr<Panel> panel_;
    std::unique_ptr<Screen> screen_;
    std::unique_ptr<OlderTray> tray_;
};
