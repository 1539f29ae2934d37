// SPDX-License-Identifier: MIT
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

// What the program and its drawing helper say to each other. Both are parts of one build.

/// How a panel shows a status item.
enum class StatusLook {
    /// A square picture only.
    Icon,
    /// A picture of the panel's height and any width.
    WideIcon,
    /// The label as text, beside the program's icon.
    Label,
};

/// A picture as the StatusNotifierItem protocol carries it: ARGB32, not premultiplied, big-endian.
struct StatusPixmap {
    int width = 0;
    int height = 0;
    std::string pixels;

    bool operator==(StatusPixmap const&) const = default;
};

/// What is to be drawn. The title is UTF-8.
struct StatusDrawing {
    StatusLook look = StatusLook::Icon;
    std::string title;
};

std::string encode(StatusDrawing const& drawing);
/// Nothing for a text that encode() did not make, but for the title, which is not looked at.
std::optional<StatusDrawing> decodeDrawing(std::string_view text);

std::string encode(std::vector<StatusPixmap> const& pixmaps);
/// Nothing for a text that is cut off, or that holds anything else.
std::optional<std::vector<StatusPixmap>> decodePixmaps(std::string_view text);
