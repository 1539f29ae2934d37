// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <memory>
#include <string_view>

#include <xcb/xcb.h>

/// A tray after the freedesktop system tray protocol, for programs that put a window of their own into it.
class OlderTray {
public:
    /// Opens the tray of the display's first screen. Nothing when there is no display or another tray is there.
    static std::unique_ptr<OlderTray> open();

    bool hasItem() const { return hasItem_; }

    /// What to wait on for more to process.
    int descriptor() const { return xcb_get_file_descriptor(display_.get()); }
    /// Handles one event; false when there is none.
    bool process();

private:
    struct Disconnect {
        void operator()(xcb_connection_t* display) const { xcb_disconnect(display); }
    };
    using Display = std::unique_ptr<xcb_connection_t, Disconnect>;

    explicit OlderTray(Display display);

    xcb_atom_t atom(std::string_view name) const;
    bool takeSelection();
    void embed(xcb_window_t icon);

    Display display_;
    xcb_window_t root_;
    xcb_window_t window_;
    bool hasItem_ = false;
};
