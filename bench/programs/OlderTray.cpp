// SPDX-License-Identifier: MIT
#include "bench/programs/OlderTray.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <utility>

namespace {

// Of the protocol's "opcode", and of XEMBED's messages.
constexpr std::uint32_t requestDock = 0;
constexpr std::uint32_t embeddedNotify = 0;

constexpr std::uint16_t width = 64;
constexpr std::uint16_t height = 32;

struct Free {
    void operator()(void* memory) const { std::free(memory); }
};

template <typename Type> using Reply = std::unique_ptr<Type, Free>;

void send(xcb_connection_t* display, xcb_window_t receiver, xcb_window_t about, xcb_atom_t type, std::uint32_t mask,
    std::array<std::uint32_t, 5> data)
{
    xcb_client_message_event_t message {};
    message.response_type = XCB_CLIENT_MESSAGE;
    message.format = 32;
    message.window = about;
    message.type = type;
    std::copy(data.begin(), data.end(), std::begin(message.data.data32));
    xcb_send_event(display, 0, receiver, mask, reinterpret_cast<char const*>(&message));
}

}

std::unique_ptr<OlderTray> OlderTray::open()
{
    Display display(xcb_connect(nullptr, nullptr));
    if (xcb_connection_has_error(display.get()) != 0)
        return {};
    std::unique_ptr<OlderTray> tray(new OlderTray(std::move(display)));
    return tray->takeSelection() ? std::move(tray) : nullptr;
}

OlderTray::OlderTray(Display display)
    : display_(std::move(display))
    , root_(xcb_setup_roots_iterator(xcb_get_setup(display_.get())).data->root)
    , window_(xcb_generate_id(display_.get()))
{
    xcb_create_window(display_.get(), XCB_COPY_FROM_PARENT, window_, root_, 0, 0, width, height, 0,
        XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT, 0, nullptr);
    xcb_map_window(display_.get(), window_);
}

xcb_atom_t OlderTray::atom(std::string_view name) const
{
    auto const request = xcb_intern_atom(display_.get(), 0, static_cast<std::uint16_t>(name.size()), name.data());
    Reply<xcb_intern_atom_reply_t> const reply(xcb_intern_atom_reply(display_.get(), request, nullptr));
    return reply ? reply->atom : xcb_atom_t { XCB_ATOM_NONE };
}

bool OlderTray::takeSelection()
{
    auto const selection = atom("_NET_SYSTEM_TRAY_S0");
    auto const owner = [&] {
        auto const request = xcb_get_selection_owner(display_.get(), selection);
        Reply<xcb_get_selection_owner_reply_t> const reply(
            xcb_get_selection_owner_reply(display_.get(), request, nullptr));
        return reply ? reply->owner : xcb_window_t { XCB_WINDOW_NONE };
    };
    if (owner() != XCB_WINDOW_NONE)
        return false;
    xcb_set_selection_owner(display_.get(), window_, selection, XCB_CURRENT_TIME);
    send(display_.get(), root_, root_, atom("MANAGER"), XCB_EVENT_MASK_STRUCTURE_NOTIFY,
        { XCB_CURRENT_TIME, selection, window_, 0, 0 });
    return owner() == window_;
}

bool OlderTray::process()
{
    Reply<xcb_generic_event_t> const event(xcb_poll_for_event(display_.get()));
    if (!event)
        return false;
    if ((event->response_type & ~0x80) != XCB_CLIENT_MESSAGE)
        return true;
    auto const& message = reinterpret_cast<xcb_client_message_event_t const&>(*event);
    if (message.type == atom("_NET_SYSTEM_TRAY_OPCODE") && message.data.data32[1] == requestDock)
        embed(message.data.data32[2]);
    return true;
}

void OlderTray::embed(xcb_window_t icon)
{
    hasItem_ = true;
    xcb_reparent_window(display_.get(), icon, window_, 0, 0);
    xcb_map_window(display_.get(), icon);
    send(display_.get(), icon, icon, atom("_XEMBED"), XCB_EVENT_MASK_NO_EVENT,
        { XCB_CURRENT_TIME, embeddedNotify, 0, window_, 0 });
    xcb_flush(display_.get());
}
