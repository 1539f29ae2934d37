// SPDX-License-Identifier: MIT
#pragma once

#include <string>

namespace platform {

/// The desktop around the program. Main thread only.
class Workspace {
public:
    virtual ~Workspace() = default;

    /// Shows an address in the user's browser; false where that cannot be started.
    virtual bool open(std::string const& url) = 0;
};

}
