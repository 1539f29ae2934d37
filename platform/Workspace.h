// SPDX-License-Identifier: MIT
#pragma once

#include <string>

namespace platform {

/// The desktop around the program. Main thread only.
class Workspace {
public:
    virtual ~Workspace() = default;

    /// Opens a URL in the user's browser. Returns false if the browser cannot be started.
    virtual bool open(std::string const& url) = 0;
};

}
