// SPDX-License-Identifier: MIT
#pragma once

#include <algorithm>
#include <string_view>
#include <vector>

namespace platform {

/// Returns the non-empty pieces of a text between separators. They are views into the text.
inline std::vector<std::string_view> split(std::string_view text, char separator)
{
    std::vector<std::string_view> pieces;
    while (!text.empty()) {
        auto const piece = text.substr(0, text.find(separator));
        text.remove_prefix(std::min(piece.size() + 1, text.size()));
        if (!piece.empty())
            pieces.push_back(piece);
    }
    return pieces;
}

}
