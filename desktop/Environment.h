// SPDX-License-Identifier: MIT
#pragma once

#include <cstdlib>
#include <string>

/// The value of an environment variable; empty if it is not set. Main thread only.
inline std::string environmentText(char const* name)
{
    char const* const value = std::getenv(name); // NOLINT(concurrency-mt-unsafe)
    return value ? value : "";
}
