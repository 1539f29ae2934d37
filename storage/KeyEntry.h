// SPDX-License-Identifier: MIT
#pragma once

#include <optional>
#include <string>
#include <string_view>

/// One connection of the key list: a nickname, the separator " - " and the usage key.
struct KeyEntry {
    std::string nickname;
    /// Nothing when the text has no separator.
    std::optional<std::string> key;

    /// Cuts a text at every separator; what follows a second one is ignored.
    static KeyEntry parse(std::string_view text);
    static std::string format(std::string_view nickname, std::string_view key);
    /// Whether the user may add them: a key is not empty and has no blank, and neither has a hyphen, which would make
    /// the separator ambiguous.
    static bool isAcceptable(std::string_view nickname, std::string_view key);
};
