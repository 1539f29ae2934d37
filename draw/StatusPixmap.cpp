// SPDX-License-Identifier: MIT
#include "draw/StatusPixmap.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <utility>

namespace {

constexpr std::array lookNames { std::pair(StatusLook::Icon, std::string_view("icon")),
    std::pair(StatusLook::WideIcon, std::string_view("wide")),
    std::pair(StatusLook::Label, std::string_view("label")) };

constexpr int maximumSide = 8192;
constexpr std::size_t pixelSize = 4;

// Returns the text before the mark, and removes both from the input.
std::optional<std::string_view> take(std::string_view& text, char mark)
{
    auto const end = text.find(mark);
    if (end == std::string_view::npos)
        return std::nullopt;
    auto const taken = text.substr(0, end);
    text.remove_prefix(end + 1);
    return taken;
}

std::optional<int> takeSide(std::string_view& text, char mark)
{
    auto const digits = take(text, mark);
    if (!digits)
        return std::nullopt;
    int side = 0;
    auto const* const last = digits->data() + digits->size();
    auto const [end, error] = std::from_chars(digits->data(), last, side);
    bool const isSide = error == std::errc() && end == last && side > 0 && side <= maximumSide;
    return isSide ? std::optional(side) : std::nullopt;
}

std::optional<StatusPixmap> takePixmap(std::string_view& text)
{
    auto const width = takeSide(text, ' ');
    auto const height = width ? takeSide(text, '\n') : std::nullopt;
    if (!height)
        return std::nullopt;
    auto const size = static_cast<std::size_t>(*width) * static_cast<std::size_t>(*height) * pixelSize;
    if (text.size() < size)
        return std::nullopt;
    StatusPixmap pixmap { *width, *height, std::string(text.substr(0, size)) };
    text.remove_prefix(size);
    return pixmap;
}

}

// Writes two lines, the second of which is the title.
std::string encode(StatusDrawing const& drawing)
{
    auto const* const known = std::ranges::find(lookNames, drawing.look, [](auto const& each) { return each.first; });
    return std::string(known->second) + '\n' + drawing.title + '\n';
}

std::optional<StatusDrawing> decodeDrawing(std::string_view text)
{
    auto const look = take(text, '\n');
    auto const* const known = std::ranges::find(lookNames, look, [](auto const& each) { return each.second; });
    if (known == lookNames.end() || !text.ends_with('\n'))
        return std::nullopt;
    text.remove_suffix(1);
    return StatusDrawing { known->first, std::string(text) };
}

// Writes a line with the width and the height of each picture, followed by its pixels.
std::string encode(std::vector<StatusPixmap> const& pixmaps)
{
    std::string text;
    for (auto const& [width, height, pixels] : pixmaps)
        text += std::to_string(width) + ' ' + std::to_string(height) + '\n' + pixels;
    return text;
}

std::optional<std::vector<StatusPixmap>> decodePixmaps(std::string_view text)
{
    std::vector<StatusPixmap> pixmaps;
    while (!text.empty()) {
        auto pixmap = takePixmap(text);
        if (!pixmap)
            return std::nullopt;
        pixmaps.push_back(std::move(*pixmap));
    }
    return pixmaps;
}
