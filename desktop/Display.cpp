// SPDX-License-Identifier: MIT
#include "desktop/Display.h"

#include "desktop/Environment.h"
#include "platform/Split.h"

#include <cstdlib>
#include <string_view>
#include <sys/epoll.h>
#include <vector>
#include <wayland-client-core.h>
#include <xcb/xcb.h>

namespace {

enum class Kind { X11, Wayland, Other };

Kind kindOf(std::string_view platform)
{
    if (platform == "xcb")
        return Kind::X11;
    // A socket passed in by the caller allows only one connection, which the toolkit needs.
    bool const isOurs = platform.starts_with("wayland") && environmentText("WAYLAND_SOCKET").empty();
    return isOurs ? Kind::Wayland : Kind::Other;
}

// Follows the toolkit's own rules: of a list of platforms with options, it uses the first that it can connect to.
std::vector<Kind> kindsOfDisplay()
{
    auto const named = environmentText("QT_QPA_PLATFORM");
    std::vector<Kind> kinds;
    for (auto const platform : platform::split(named, ';'))
        kinds.push_back(kindOf(platform.substr(0, platform.find(':'))));
    if (!kinds.empty())
        return kinds;
    bool const mayBeWayland
        = !environmentText("WAYLAND_DISPLAY").empty() || environmentText("XDG_SESSION_TYPE") == "wayland";
    return mayBeWayland ? std::vector { kindOf("wayland"), Kind::X11 } : std::vector { Kind::X11 };
}

/// A display that needs no connection of ours.
class OtherDisplay final : public Display { };

class X11Display final : public Display {
public:
    X11Display(DesktopRunLoop& loop, platform::Task gone)
        : connection_(xcb_connect(nullptr, &screen_), &xcb_disconnect)
        , watch_(isOpen() ? loop.watch(xcb_get_file_descriptor(connection_.get()), EPOLLIN,
                                [this, gone = std::move(gone)] {
                                    discardEvents();
                                    if (isOpen())
                                        return;
                                    watch_.reset();
                                    gone();
                                })
                          : nullptr)
    {
    }

    bool isOpen() const { return xcb_connection_has_error(connection_.get()) == 0; }

    // By the System Tray Protocol, the owner of the selection _NET_SYSTEM_TRAY_Sn is the tray of screen n.
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

    // The server sends some events to every client, such as keyboard changes.
    void discardEvents() const
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
                                    if (wl_display_dispatch(connection_.get()) >= 0)
                                        return;
                                    watch_.reset();
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

std::unique_ptr<Display> Display::connect(DesktopRunLoop& loop, platform::Task const& gone)
{
    for (auto const kind : kindsOfDisplay()) {
        std::unique_ptr<Display> display;
        if (kind == Kind::X11)
            display = connected<X11Display>(loop, gone);
        else if (kind == Kind::Wayland)
            display = connected<WaylandDisplay>(loop, gone);
        else
            display = std::make_unique<OtherDisplay>();
        if (display)
            return display;
    }
    return nullptr;
}

std::string Display::name()
{
    return environmentText(kindsOfDisplay().front() == Kind::Wayland ? "WAYLAND_DISPLAY" : "DISPLAY");
}
