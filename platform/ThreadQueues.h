// SPDX-License-Identifier: MIT
#pragma once

#include "platform/BackgroundQueues.h"

#include <memory>

namespace platform {

/// A thread for each queue, named after its label.
class ThreadQueues final : public BackgroundQueues {
public:
    ThreadQueues();

    bool async(std::string const& label, Task task) override;

    /// Waits for all queues to end, and returns whether they did in time.
    bool waitUntilIdle(Seconds limit);

private:
    struct Running;

    std::shared_ptr<Running> running_;
};

}
