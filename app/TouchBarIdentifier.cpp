// SPDX-License-Identifier: MIT
#include "app/TouchBarIdentifier.h"

#include <algorithm>
#include <charconv>

namespace {

constexpr char separator = '-';
constexpr std::string_view yes = "yes";

// Returns the text up to the next separator, and removes both from the front.
std::string_view takeField(std::string_view& rest)
{
    auto const field = rest.substr(0, rest.find(separator));
    rest.remove_prefix(std::min(field.size() + 1, rest.size()));
    return field;
}

}

TouchBarIdentifier TouchBarIdentifier::parse(std::string_view text)
{
    TouchBarIdentifier identifier;
    auto const position = takeField(text);
    std::from_chars(position.data(), position.data() + position.size(), identifier.position);
    identifier.nickname = takeField(text);
    identifier.selected = takeField(text) == yes;
    return identifier;
}

std::string touchBarIdentifier(int position, std::string_view nickname, bool selected)
{
    return std::to_string(position)
        .append(1, separator)
        .append(nickname)
        .append(1, separator)
        .append(selected ? yes : "no");
}
