// SPDX-License-Identifier: MIT
#pragma once

#include <optional>
#include <string>

/// Loads an address over HTTPS and nothing else, redirects (10 at most) included, and blocks until that is done.
/// Certificates are always verified, against the system's authorities and, where a file of it is given, an additional
/// one. Nothing comes of a minute without progress, five minutes in all, a body of more than 8 MiB (decompressed) or
/// one that is not UTF-8. No cookies, no credentials; the proxy is the environment's. The HTTP status is not looked at.
std::optional<std::string> loadOverHttps(std::string const& url, std::string const& additionalAuthority);
