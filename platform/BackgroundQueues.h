// SPDX-License-Identifier: MIT
#pragma once

#include "platform/RunLoop.h"

#include <string>

namespace platform {

/// Runs blocking work away from the main thread.
class BackgroundQueues {
public:
    virtual ~BackgroundQueues() = default;

    /// Runs the task on a new serial queue of its own under that label, and returns at once. Main thread only.
    virtual void async(std::string const& label, Task task) = 0;
};

}
