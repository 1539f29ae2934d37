// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

/// How a panel shows a status item.
enum class StatusLook {
    /// A square picture only.
    Icon,
    /// A picture of the panel's height and any width.
    WideIcon,
    /// The label as text, beside the icon.
    Label,
};

/// The look that the panel behind a process name gives its items, as /proc/PID/comm has it: cut to 15 bytes. A program
/// that is not known shows a square picture.
StatusLook statusLookOf(QString const& processName);

/// The name of a running process; empty if it is not to be seen.
QString processName(uint processId);
