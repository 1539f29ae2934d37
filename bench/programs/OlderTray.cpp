// SPDX-License-Identifier: MIT
#include "bench/programs/OlderTray.h"

#include <utility>

namespace {

// The values of the protocol's "opcode" and of XEMBED's messages.
constexpr std::uint32_t requestDock = 0;
constexpr std::uint32_t embeddedNotify = 0;

constexpr std::uint16_t width = 64;
constexpr std::uint16_t height = 32;

}

std::unique_ptr<OlderTray> OlderTray::open(Screen const& screen)
{
    std::unique_ptr<OlderTray> tray(new OlderTray(screen));
    return tray->takeSelection() ? std::move(tray) : nullptr;
}

OlderTray::OlderTray(Screen const& screen)
    : screen_(screen)
    , window_(xcb_generate_id(screen_.display()))
{
    xcb_create_window(screen_.display(), XCB_COPY_FROM_PARENT, window_, screen_.root(), 0, 0, width, height, 0,
        XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT, 0, nullptr);
    xcb_map_window(screen_.display(), window_);
}

bool OlderTray::takeSelection()
{
    auto const selection = screen_.atom("_NET_SYSTEM_TRAY_S0");
    auto const owner = [&] {
        auto const request = xcb_get_selection_owner(screen_.display(), selection);
        Reply<xcb_get_selection_owner_reply_t> const reply(
            xcb_get_selection_owner_reply(screen_.display(), request, nullptr));
        return reply ? reply->owner : xcb_window_t { XCB_WINDOW_NONE };
    };
    if (owner() != XCB_WINDOW_NONE)
        return false;
    xcb_set_selection_owner(screen_.display(), window_, selection, XCB_CURRENT_TIME);
    screen_.send(screen_.root(), screen_.root(), screen_.atom("MANAGER"), XCB_EVENT_MASK_STRUCTURE_NOTIFY,
        { XCB_CURRENT_TIME, selection, window_, 0, 0 });
    return owner() == window_;
}

bool OlderTray::process()
{
    Reply<xcb_generic_event_t> const event(xcb_poll_for_event(screen_.display()));
    if (!event)
        return false;
    if ((event->response_type & ~0x80) != XCB_CLIENT_MESSAGE)
        return true;
    auto const& message = reinterpret_cast<xcb_client_message_event_t const&>(*event);
    if (message.type == screen_.atom("_NET_SYSTEM_TRAY_OPCODE") && message.data.data32[1] == requestDock)
        embed(message.data.data32[2]);
    return true;
}

void OlderTray::embed(xcb_window_t icon)
{
    hasItem_ = true;
    xcb_reparent_window(screen_.display(), icon, window_, 0, 0);
    xcb_map_window(screen_.display(), icon);
    screen_.send(icon, icon, screen_.atom("_XEMBED"), XCB_EVENT_MASK_NO_EVENT,
        { XCB_CURRENT_TIME, embeddedNotify, 0, window_, 0 });
    xcb_flush(screen_.display());
}
