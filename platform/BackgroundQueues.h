// SPDX-License-Identifier: MIT
#pragma once

#include "platform/RunLoop.h"

#include <string>

namespace platform {

/// Runs blocking work away from the main thread.
class BackgroundQueues {
public:
    virtual ~BackgroundQueues() = default;

    /// Runs the task on a new serial queue with that label, and returns at once. Returns false, and never runs the
    /// task, if the system cannot create another queue. Main thread only.
    [[nodiscard]] virtual bool async(std::string const& label, Task task) = 0;
};

}
