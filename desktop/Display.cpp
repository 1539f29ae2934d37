// SPDX-License-Identifier: MIT
#include "desktop/Display.h"

#include "desktop/Environment.h"

#include <cstdlib>
#include <string_view>
#include <sys/epoll.h>
#include <wayland-client-core.h>
#include <xcb/xcb.h>

namespace {

enum class Kind { X11, Wayland, Other };

// The toolkit's own rules: a list of platforms, each with its options, of which the first counts here.
Kind kindOfDisplay()
{
    auto const platform = environmentText("QT_QPA_PLATFORM");
    std::string_view const first = std::string_view(platform).substr(0, platform.find_first_of(":;"));
    if (first == "xcb")
        return Kind::X11;
    // A socket that somebody handed over serves one connection, which is the toolkit's.
    if (!environmentText("WAYLAND_SOCKET").empty())
        return Kind::Other;
    if (!first.empty())
        return first.starts_with("wayland") ? Kind::Wayland : Kind::Other;
    return environmentText("WAYLAND_DISPLAY").empty() ? Kind::X11 : Kind::Wayland;
}

/// A display without a connection of ours.
class OtherDisplay final : public Display { };

class X11Display final : public Display {
public:
    X11Display(DesktopRunLoop& loop, platform::Task gone)
        : connection_(xcb_connect(nullptr, &screen_), &xcb_disconnect)
        , watch_(isOpen() ? loop.watch(xcb_get_file_descriptor(connection_.get()), EPOLLIN,
                                [this, gone = std::move(gone)] {
                                    passOverEvents();
                                    if (!isOpen())
                                        gone();
                                })
                          : nullptr)
    {
    }

    bool isOpen() const { return xcb_connection_has_error(connection_.get()) == 0; }

    // The owner of the selection _NET_SYSTEM_TRAY_Sn is the tray of screen n, after the System Tray Protocol.
    bool hasOlderTray() const override
    {
        auto const selection = "_NET_SYSTEM_TRAY_S" + std::to_string(screen_);
        auto const length = static_cast<std::uint16_t>(selection.size());
        auto* const connection = connection_.get();
        Reply<xcb_intern_atom_reply_t> const atom(
            xcb_intern_atom_reply(connection, xcb_intern_atom(connection, 1, length, selection.c_str()), nullptr));
        if (!atom || atom->atom == XCB_ATOM_NONE)
            return false;
        Reply<xcb_get_selection_owner_reply_t> const owner(
            xcb_get_selection_owner_reply(connection, xcb_get_selection_owner(connection, atom->atom), nullptr));
        return owner && owner->owner != XCB_WINDOW_NONE;
    }

private:
    struct Free {
        void operator()(void* memory) const { std::free(memory); }
    };
    template <typename T> using Reply = std::unique_ptr<T, Free>;

    // Every client is told of some changes, such as that of the keyboard.
    void passOverEvents() const
    {
        while (Reply<xcb_generic_event_t>(xcb_poll_for_event(connection_.get()))) { }
    }

    int screen_ = 0;
    std::unique_ptr<xcb_connection_t, decltype(&xcb_disconnect)> connection_;
    std::unique_ptr<DesktopRunLoop::Watch> watch_;
};

class WaylandDisplay final : public Display {
public:
    WaylandDisplay(DesktopRunLoop& loop, platform::Task gone)
        : connection_(wl_display_connect(nullptr), &wl_display_disconnect)
        , watch_(isOpen() ? loop.watch(wl_display_get_fd(connection_.get()), EPOLLIN,
                                [this, gone = std::move(gone)] {
                                    if (wl_display_dispatch(connection_.get()) < 0)
                                        gone();
                                })
                          : nullptr)
    {
    }

    bool isOpen() const { return connection_ != nullptr; }

private:
    std::unique_ptr<wl_display, decltype(&wl_display_disconnect)> connection_;
    std::unique_ptr<DesktopRunLoop::Watch> watch_;
};

template <typename ConnectedDisplay> std::unique_ptr<Display> connected(DesktopRunLoop& loop, platform::Task gone)
{
    auto display = std::make_unique<ConnectedDisplay>(loop, std::move(gone));
    return display->isOpen() ? std::move(display) : nullptr;
}

}

std::unique_ptr<Display> Display::connect(DesktopRunLoop& loop, platform::Task gone)
{
    switch (kindOfDisplay()) {
    case Kind::X11:
        return connected<X11Display>(loop, std::move(gone));
    case Kind::Wayland:
        return connected<WaylandDisplay>(loop, std::move(gone));
    case Kind::Other:
        break;
    }
    return std::make_unique<OtherDisplay>();
}

std::string Display::name()
{
    return environmentText(kindOfDisplay() == Kind::Wayland ? "WAYLAND_DISPLAY" : "DISPLAY");
}
