// SPDX-License-Identifier: MIT
#include "bench/programs/Screen.h"

#include <algorithm>
#include <functional>
#include <iterator>
#include <span>
#include <utility>

std::unique_ptr<Screen> Screen::open()
{
    Display display(xcb_connect(nullptr, nullptr));
    if (xcb_connection_has_error(display.get()) != 0)
        return {};
    return std::unique_ptr<Screen>(new Screen(std::move(display)));
}

Screen::Screen(Display display)
    : display_(std::move(display))
    , root_(xcb_setup_roots_iterator(xcb_get_setup(display_.get())).data->root)
{
}

xcb_atom_t Screen::atom(std::string_view name) const
{
    auto const request = xcb_intern_atom(display(), 0, static_cast<std::uint16_t>(name.size()), name.data());
    Reply<xcb_intern_atom_reply_t> const reply(xcb_intern_atom_reply(display(), request, nullptr));
    return reply ? reply->atom : xcb_atom_t { XCB_ATOM_NONE };
}

void Screen::send(xcb_window_t receiver, xcb_window_t about, xcb_atom_t type, std::uint32_t mask,
    std::array<std::uint32_t, 5> data) const
{
    xcb_client_message_event_t message {};
    message.response_type = XCB_CLIENT_MESSAGE;
    message.format = 32;
    message.window = about;
    message.type = type;
    std::copy(data.begin(), data.end(), std::begin(message.data.data32));
    xcb_send_event(display(), 0, receiver, mask, reinterpret_cast<char const*>(&message));
}

// The upper left corner represents the whole window. A smaller or hidden window has none and yields an error.
std::vector<xcb_window_t> Screen::windowsWhose(bool (*isWanted)(xcb_get_image_reply_t const& corner)) const
{
    auto const hasCorner = [&](xcb_window_t window) {
        auto const request = xcb_get_image(display(), XCB_IMAGE_FORMAT_Z_PIXMAP, window, 0, 0, 200, 150, ~0U);
        Reply<xcb_get_image_reply_t> const corner(xcb_get_image_reply(display(), request, nullptr));
        return corner && isWanted(*corner);
    };
    Reply<xcb_query_tree_reply_t> const tree(
        xcb_query_tree_reply(display(), xcb_query_tree(display(), root_), nullptr));
    std::vector<xcb_window_t> windows;
    if (tree)
        std::ranges::copy_if(
            std::span(xcb_query_tree_children(tree.get()), tree->children_len), std::back_inserter(windows), hasCorner);
    return windows;
}

std::vector<xcb_window_t> Screen::openWindows() const
{
    return windowsWhose([](xcb_get_image_reply_t const&) { return true; });
}

std::vector<xcb_window_t> Screen::drawnWindows() const
{
    return windowsWhose([](xcb_get_image_reply_t const& corner) {
        std::span const pixels(reinterpret_cast<std::uint32_t const*>(xcb_get_image_data(&corner)), corner.length);
        return std::ranges::adjacent_find(pixels, std::not_equal_to()) != pixels.end();
    });
}

void Screen::closeWindows() const
{
    for (auto const window : drawnWindows())
        send(window, window, atom("WM_PROTOCOLS"), XCB_EVENT_MASK_NO_EVENT, { atom("WM_DELETE_WINDOW") });
    xcb_flush(display());
}
