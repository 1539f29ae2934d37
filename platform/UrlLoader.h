// SPDX-License-Identifier: MIT
#pragma once

#include <optional>
#include <string>

namespace platform {

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
