// SPDX-License-Identifier: MIT
#pragma once

#include <functional>
#include <string>
#include <vector>

namespace platform {

/// A message that a window shows as a sheet and the user answers with a button.
struct Alert {
    enum class Style { Warning, Informational, Critical };
    /// The value returned for the first button; the following buttons count up from it.
    static constexpr int firstButtonReturn = 1000;
    /// The value returned if the sheet was dismissed without a button.
    static constexpr int dismissedReturn = 0;

    std::string messageText {};
    std::string informativeText {};
    /// The buttons' titles, the default button first. If empty, the desktop shows its single default button.
    std::vector<std::string> buttons {};
    Style style = Style::Warning;
    /// Whether the first button destroys something; if so, the last button is the default.
    bool isDestructive = false;
};

}
