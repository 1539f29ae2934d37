// SPDX-License-Identifier: MIT
#pragma once

#include <functional>
#include <string>
#include <vector>

namespace platform {

/// A message that a window shows as a sheet and the user answers with a button.
struct Alert {
    enum class Style { Warning, Informational, Critical };
    /// The answer of the first button; the next ones follow it.
    static constexpr int firstButtonReturn = 1000;
    /// The answer when the sheet went without a button.
    static constexpr int dismissedReturn = 0;

    std::string messageText {};
    std::string informativeText {};
    /// The buttons' titles, the default button first. Empty: the desktop's single default button.
    std::vector<std::string> buttons {};
    Style style = Style::Warning;
    /// The first button destroys something, so that the last one is the default button.
    bool isDestructive = false;
};

}
