// SPDX-License-Identifier: MIT
#pragma once

#include "platform/Color.h"

#include <optional>

/// How the desktop wants windows to look.
struct Look {
    platform::Appearance appearance = platform::Appearance::Light;
    /// Of what is selected or has the focus, where the user has chosen a colour.
    std::optional<platform::Color> accent;

    bool operator==(Look const&) const = default;
};
