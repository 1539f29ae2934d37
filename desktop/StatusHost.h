// SPDX-License-Identifier: MIT
#pragma once

#include "draw/StatusPixmap.h"

#include <cstdint>
#include <string>
#include <string_view>

/// What is known of a panel.
struct StatusHost {
    StatusLook look = StatusLook::Icon;
    /// Shows symbolic icons in its text's colour. Elsewhere they could be dark on dark.
    bool coloursSymbols = false;
    /// Loses the label of an item that it has just met, until the item registers again.
    bool losesFirstLabel = false;
    /// Takes only the first underscore of a menu's line for a mark, and shows the others as they come.
    bool marksFirstUnderscoreOnly = false;
};

/// The panel behind a process name as /proc/PID/comm has it: cut to 15 bytes. A program that is not known shows a
/// square picture.
StatusHost statusHostOf(std::string_view processName);

/// The name of a running process; empty if it is not to be seen.
std::string processName(std::uint32_t processId);
