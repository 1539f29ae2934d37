// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <string_view>

/// A connection's button in the touch bar, as encoded in the item's identifier, such as "0-Home-yes".
struct TouchBarIdentifier {
    /// The connection's position in the key list.
    int position = 0;
    std::string nickname;
    bool selected = false;

    /// Splits a text at every hyphen. A missing field is empty, an invalid position is 0, and only "yes" means
    /// selected.
    static TouchBarIdentifier parse(std::string_view text);

    bool operator==(TouchBarIdentifier const&) const = default;
};

/// Makes the identifier of a connection's item. It can be parsed back only if the nickname has no hyphen.
std::string touchBarIdentifier(int position, std::string_view nickname, bool selected);
