// SPDX-License-Identifier: MIT
#pragma once

#include "platform/RunLoop.h"

#include <string>

namespace platform {

/// Runs blocking work away from the main thread.
class BackgroundQueues {
public:
    virtual ~BackgroundQueues() = default;

    /// Runs the task on a new serial queue of its own under that label, and returns at once. False when the computer
    /// has no room for another; the task never runs then. Main thread only.
    [[nodiscard]] virtual bool async(std::string const& label, Task task) = 0;
};

}
