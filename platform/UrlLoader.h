// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <optional>
#include <string>

namespace platform {

/// The maximum size of a body in bytes after decompression. A larger one is discarded.
constexpr std::size_t maximumBodySize = 8UL * 1024 * 1024;

/// Loads the content of a URL.
class UrlLoader {
public:
    virtual ~UrlLoader() = default;

    /// Blocks for the whole exchange and returns the body as UTF-8 text, or nothing on failure. The HTTP status is
    /// ignored. Any thread but the main one.
    virtual std::optional<std::string> load(std::string const& url) = 0;
};

/// Whether a URL has only RFC 3986's unreserved and reserved characters, and "%" only before two hexadecimal digits.
bool isWellFormedUrl(std::string_view url);

}
