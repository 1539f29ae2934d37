// SPDX-License-Identifier: MIT
#pragma once

#include "bench/programs/Screen.h"

#include <memory>

/// A tray of the freedesktop system tray protocol, for programs that embed their own window in it.
class OlderTray {
public:
    /// Opens the tray of the screen. Returns null if there is another tray.
    static std::unique_ptr<OlderTray> open(Screen const& screen);

    bool hasItem() const { return hasItem_; }

    /// The descriptor to wait for before calling process().
    int descriptor() const { return xcb_get_file_descriptor(screen_.display()); }
    /// Handles one event. Returns false if there is none.
    bool process();

private:
    explicit OlderTray(Screen const& screen);

    bool takeSelection();
    void embed(xcb_window_t icon);

    Screen const& screen_;
    xcb_window_t window_;
    bool hasItem_ = false;
};
