// SPDX-License-Identifier: MIT
#pragma once

#include <array>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <string_view>
#include <vector>

#include <xcb/xcb.h>

struct FreeReply {
    void operator()(void* memory) const { std::free(memory); }
};

/// A reply from the display.
template <typename Type> using Reply = std::unique_ptr<Type, FreeReply>;

/// The display's first screen and the windows on it. There is no window manager.
class Screen {
public:
    /// Returns null if there is no display.
    static std::unique_ptr<Screen> open();

    xcb_connection_t* display() const { return display_.get(); }
    xcb_window_t root() const { return root_; }
    xcb_atom_t atom(std::string_view name) const;
    /// Sends a message of this type that refers to a window.
    void send(xcb_window_t receiver, xcb_window_t about, xcb_atom_t type, std::uint32_t mask,
        std::array<std::uint32_t, 5> data) const;

    /// The windows that are larger than an icon, even if others cover them.
    std::vector<xcb_window_t> openWindows() const;
    /// Those of them whose corner shows more than one colour, which is true once they have been drawn.
    std::vector<xcb_window_t> drawnWindows() const;
    /// Asks each drawn window to close, as a window manager does for the user.
    void closeWindows() const;

private:
    struct Disconnect {
        void operator()(xcb_connection_t* display) const { xcb_disconnect(display); }
    };
    using Display = std::unique_ptr<xcb_connection_t, Disconnect>;

    explicit Screen(Display display);

    std::vector<xcb_window_t> windowsWhose(bool (*isWanted)(xcb_get_image_reply_t const& corner)) const;

    Display display_;
    xcb_window_t root_;
};
