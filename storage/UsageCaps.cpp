// SPDX-License-Identifier: MIT
#include "storage/UsageCaps.h"

namespace usageCaps {

platform::Dictionary withCap(platform::Dictionary const* table, std::optional<std::string> const& cap,
    std::optional<std::string> const& keyEntry)
{
    platform::Dictionary changed = table ? *table : platform::Dictionary {};
    if (cap && keyEntry)
        changed.insert_or_assign(*keyEntry, *cap);
    return changed;
}

std::optional<platform::Dictionary> without(platform::Dictionary const* table, std::string_view keyEntry)
{
    if (!table)
        return std::nullopt;
    auto changed = *table;
    auto const found = changed.find(keyEntry);
    if (found == changed.end())
        return std::nullopt;
    changed.erase(found);
    return changed;
}

}
