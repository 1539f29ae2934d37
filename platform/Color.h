// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>

namespace platform {

/// An opaque sRGB colour.
struct Color {
    std::uint8_t red = 0;
    std::uint8_t green = 0;
    std::uint8_t blue = 0;

    bool operator==(Color const&) const = default;
};

/// High contrast is an appearance like the others, so that code that follows the appearance follows contrast too.
enum class Appearance { Light, Dark, HighContrastLight, HighContrastDark };

/// The desktop's own colours for a window, for text, and for the background of content such as lists and fields.
struct SystemColors {
    Color windowBackground { 255, 255, 255 };
    Color text {};
    Color controlBackground { 255, 255, 255 };
};

}
