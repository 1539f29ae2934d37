// SPDX-License-Identifier: MIT
#pragma once

#include <optional>
#include <string>

/// Loads a URL over HTTPS only, following up to 10 redirects, and blocks until done. Certificates are always verified,
/// against the system's authorities and the given file of an additional one, if any. Returns nothing after a minute
/// without progress or five minutes in all, and for a body that is larger than 8 MiB (decompressed) or not UTF-8. Uses
/// no cookies or credentials, and the proxy of the environment. The HTTP status is ignored.
std::optional<std::string> loadOverHttps(std::string const& url, std::string const& additionalAuthority);
