// SPDX-License-Identifier: MIT
#pragma once

#include <csignal>
#include <functional>
#include <sys/resource.h>

/// Runs a task while no file can grow beyond a few bytes, for root too: a write fails as on a full disk.
inline void withFullDisk(std::function<void()> const& task)
{
    std::signal(SIGXFSZ, SIG_IGN);
    rlimit old {};
    ::getrlimit(RLIMIT_FSIZE, &old);
    rlimit const full { 16, old.rlim_max };
    ::setrlimit(RLIMIT_FSIZE, &full);
    task();
    ::setrlimit(RLIMIT_FSIZE, &old);
}
