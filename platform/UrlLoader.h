// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <optional>
#include <string>

namespace platform {

/// The size in bytes, after decompression, beyond which a body is none.
constexpr std::size_t maximumBodySize = 8UL * 1024 * 1024;

/// Loads what an address names.
class UrlLoader {
public:
    virtual ~UrlLoader() = default;

    /// Blocks for the whole exchange and returns the body as UTF-8 text; nothing when there is none to be had. The
    /// HTTP status is not looked at. Any thread but the main one.
    virtual std::optional<std::string> load(std::string const& url) = 0;
};

/// Whether every character may stand in an address: RFC 3986's unreserved and reserved characters, and "%" only before
/// two hexadecimal digits.
bool isWellFormedUrl(std::string_view url);

}
