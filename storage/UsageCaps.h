// SPDX-License-Identifier: MIT
#pragma once

#include "platform/Value.h"

#include <optional>
#include <string>

/// The table of usage caps: key entry to cap text. A missing table is treated as empty.
namespace usageCaps {

/// Returns the table with the entry's cap set, or unchanged without a cap or an entry.
platform::Dictionary withCap(platform::Dictionary const* table, std::optional<std::string> const& cap,
    std::optional<std::string> const& keyEntry);

/// Returns the table without the entry, or nothing if it had none.
std::optional<platform::Dictionary> without(platform::Dictionary const* table, std::string_view keyEntry);

}
