// SPDX-License-Identifier: MIT
#pragma once

#include "platform/Value.h"

#include <optional>
#include <string>

/// The usage caps table: whole key entry to cap text. No table is the same as an empty one.
namespace usageCaps {

/// The table with the entry's cap set, where there are both a cap and an entry.
platform::Dictionary withCap(platform::Dictionary const* table, std::optional<std::string> const& cap,
    std::optional<std::string> const& keyEntry);

/// The table without the entry; nothing when it had none.
std::optional<platform::Dictionary> without(platform::Dictionary const* table, std::string_view keyEntry);

}
