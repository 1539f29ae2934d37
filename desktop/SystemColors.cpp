// SPDX-License-Identifier: MIT
#include "desktop/SystemColors.h"

namespace {

constexpr platform::Color black {};
constexpr platform::Color white { 0xFF, 0xFF, 0xFF };

}

platform::SystemColors systemColors(platform::Appearance appearance)
{
    switch (appearance) {
    case platform::Appearance::Light:
        break;
    case platform::Appearance::Dark:
        return { { 0x2B, 0x2D, 0x30 }, white, { 0x1E, 0x1F, 0x22 } };
    case platform::Appearance::HighContrastLight:
        return { white, black, white };
    case platform::Appearance::HighContrastDark:
        return { black, white, black };
    }
    return { { 0xF3, 0xF3, 0xF3 }, black, white };
}
