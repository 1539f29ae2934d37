// SPDX-License-Identifier: MIT
#include "storage/KeyEntry.h"

namespace {

constexpr std::string_view separator = " - ";

}

KeyEntry KeyEntry::parse(std::string_view text)
{
    std::size_t const end = text.find(separator);
    KeyEntry entry { std::string(text.substr(0, end)), std::nullopt };
    if (end == std::string_view::npos)
        return entry;
    std::string_view const rest = text.substr(end + separator.size());
    entry.key = rest.substr(0, rest.find(separator));
    return entry;
}

std::string KeyEntry::format(std::string_view nickname, std::string_view key)
{
    return std::string(nickname).append(separator).append(key);
}

bool KeyEntry::isAcceptable(std::string_view nickname, std::string_view key)
{
    return !key.empty() && key.find_first_of("- ") == std::string_view::npos
        && nickname.find('-') == std::string_view::npos;
}
