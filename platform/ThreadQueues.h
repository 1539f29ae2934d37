// SPDX-License-Identifier: MIT
#pragma once

#include "platform/BackgroundQueues.h"

#include <memory>

namespace platform {

/// Runs each queue on its own thread, named after the label.
class ThreadQueues final : public BackgroundQueues {
public:
    ThreadQueues();

    bool async(std::string const& label, Task task) override;

    /// Waits for all queues to finish. Returns false on timeout.
    bool waitUntilIdle(Seconds limit);

private:
    struct Running;

    std::shared_ptr<Running> running_;
};

}
