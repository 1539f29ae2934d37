// SPDX-License-Identifier: MIT
#pragma once

#include <optional>
#include <string>
#include <string_view>

/// One connection of the key list: a nickname, the separator " - " and the usage key.
struct KeyEntry {
    std::string nickname;
    /// Nothing if the text has no separator.
    std::optional<std::string> key;

    /// Splits a text at every separator; anything after a second one is ignored.
    static KeyEntry parse(std::string_view text);
    static std::string format(std::string_view nickname, std::string_view key);
    /// Whether the user may add them. A key must not be empty or contain a space, and neither may contain a hyphen,
    /// which would make the separator ambiguous.
    static bool isAcceptable(std::string_view nickname, std::string_view key);
};
