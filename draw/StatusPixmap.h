// SPDX-License-Identifier: MIT
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

// The messages between the program and its drawing helper. Both always come from the same build.

/// How a panel shows a status item.
enum class StatusLook {
    /// A square picture only.
    Icon,
    /// A picture of the panel's height and any width.
    WideIcon,
    /// The label as text, next to the program's icon.
    Label,
};

/// A picture as the StatusNotifierItem protocol carries it: ARGB32, not premultiplied, big-endian.
struct StatusPixmap {
    int width = 0;
    int height = 0;
    std::string pixels;

    bool operator==(StatusPixmap const&) const = default;
};

/// A request for a drawing. The title is UTF-8.
struct StatusDrawing {
    StatusLook look = StatusLook::Icon;
    std::string title;
};

std::string encode(StatusDrawing const& drawing);
/// Returns nothing for a text that encode() did not make. The title itself is not checked.
std::optional<StatusDrawing> decodeDrawing(std::string_view text);

std::string encode(std::vector<StatusPixmap> const& pixmaps);
/// Returns nothing for a text that is cut off or malformed.
std::optional<std::vector<StatusPixmap>> decodePixmaps(std::string_view text);
