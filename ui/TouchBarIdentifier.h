// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <string_view>

/// A connection's button in the touch bar, as the item's identifier tells of it: "0-Home-yes".
struct TouchBarIdentifier {
    /// The connection's place in the key list.
    int position = 0;
    std::string nickname;
    bool selected = false;

    /// Cuts a text at every hyphen. A missing field is empty, a position without a number is 0, and only "yes" is
    /// selected.
    static TouchBarIdentifier parse(std::string_view text);

    bool operator==(TouchBarIdentifier const&) const = default;
};

/// The identifier of a connection's item. It reads back as it was made as long as the nickname has no hyphen.
std::string touchBarIdentifier(int position, std::string_view nickname, bool selected);
