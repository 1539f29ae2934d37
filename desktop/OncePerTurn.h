// SPDX-License-Identifier: MIT
#pragma once

#include "platform/RunLoop.h"

#include <memory>
#include <utility>

/// Coalesces requests within one turn of the main loop: however many there are, the task runs once, after everything
/// already queued. Main thread only.
class OncePerTurn {
public:
    OncePerTurn(platform::RunLoop& loop, platform::Task task)
        : loop_(loop)
        , task_(std::make_shared<platform::Task>(std::move(task)))
    {
    }

    void request()
    {
        if (std::exchange(requested_, true))
            return;
        loop_.perform([this, weak = std::weak_ptr(task_)] {
            // The object may have been destroyed.
            auto const task = weak.lock();
            if (!task)
                return;
            requested_ = false;
            (*task)();
        });
    }

private:
    platform::RunLoop& loop_;
    std::shared_ptr<platform::Task> task_;
    bool requested_ = false;
};
