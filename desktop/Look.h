// SPDX-License-Identifier: MIT
#pragma once

#include "platform/Color.h"

#include <optional>

/// How the desktop wants windows to look.
struct Look {
    platform::Appearance appearance = platform::Appearance::Light;
    /// The colour for selection and focus, if the user has chosen one.
    std::optional<platform::Color> accent;

    bool operator==(Look const&) const = default;
};
