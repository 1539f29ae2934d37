// SPDX-License-Identifier: MIT
#include "platform/ThreadQueues.h"

#include <pthread.h>

#include <condition_variable>
#include <mutex>
#include <system_error>
#include <thread>

namespace platform {

namespace {

// Linux limits a thread's name to 15 bytes and rejects a longer one.
constexpr std::size_t maximumNameLength = 15;

}

// Shared with the threads, which may outlive the queues.
struct ThreadQueues::Running {
    std::mutex mutex;
    std::condition_variable idle;
    std::size_t count = 0;

    void started()
    {
        std::scoped_lock const lock(mutex);
        ++count;
    }

    void ended()
    {
        std::scoped_lock const lock(mutex);
        if (--count == 0)
            idle.notify_all();
    }
};

ThreadQueues::ThreadQueues()
    : running_(std::make_shared<Running>())
{
}

bool ThreadQueues::async(std::string const& label, Task task)
{
    running_->started();
    try {
        std::thread([running = running_, name = label.substr(0, maximumNameLength), task = std::move(task)]() mutable {
            ::pthread_setname_np(::pthread_self(), name.c_str());
            task();
            task = nullptr; // Destroys what it holds before the queue counts as idle.
            running->ended();
        }).detach();
        return true;
    } catch (std::system_error const&) {
        running_->ended();
        return false;
    }
}

bool ThreadQueues::waitUntilIdle(Seconds limit)
{
    std::unique_lock lock(running_->mutex);
    return running_->idle.wait_for(lock, limit, [this] { return running_->count == 0; });
}

}
