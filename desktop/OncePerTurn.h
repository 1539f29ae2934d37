// SPDX-License-Identifier: MIT
#pragma once

#include "platform/RunLoop.h"

#include <memory>
#include <utility>

/// Gathers what happens within one turn of the main loop: however often it is asked, its task runs once, after what is
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
            // A task of nobody any more.
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
