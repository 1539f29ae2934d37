// SPDX-License-Identifier: MIT
#pragma once

#include "bench/programs/Screen.h"

#include <memory>

/// A tray after the freedesktop system tray protocol, for programs that put a window of their own into it.
class OlderTray {
public:
    /// Opens the tray of the screen. Nothing when another tray is there.
    static std::unique_ptr<OlderTray> open(Screen const& screen);

    bool hasItem() const { return hasItem_; }

    /// What to wait on for more to process.
    int descriptor() const { return xcb_get_file_descriptor(screen_.display()); }
    /// Handles one event; false when there is none.
    bool process();

private:
    explicit OlderTray(Screen const& screen);

    bool takeSelection();
    void embed(xcb_window_t icon);

    Screen const& screen_;
    xcb_window_t window_;
    bool hasItem_ = false;
};
