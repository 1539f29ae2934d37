// SPDX-License-Identifier: MIT
#pragma once

#include "draw/StatusPixmap.h"

#include <cstdint>
#include <string>
#include <string_view>

/// The properties of a known panel.
struct StatusHost {
    StatusLook look = StatusLook::Icon;
    /// Whether it draws symbolic icons in its text colour. On other panels they could be dark on dark.
    bool coloursSymbols = false;
    /// Whether it drops the label of a new item until the item registers again.
    bool losesFirstLabel = false;
    /// Whether it treats only the first underscore of a menu line as a mnemonic mark and shows the others.
    bool marksFirstUnderscoreOnly = false;
};

/// Identifies a panel by its process name from /proc/PID/comm, which is cut to 15 bytes. Unknown programs are assumed
/// to show a square picture.
StatusHost statusHostOf(std::string_view processName);

/// The name of a running process, or an empty text if it cannot be determined.
std::string processName(std::uint32_t processId);
