// SPDX-License-Identifier: MIT
#pragma once

#include "bench/programs/Clock.h"

#include <memory>
#include <sys/types.h>

/// A program started for measurement. It ends with this object, by force if necessary.
class Program {
public:
    /// Starts it with these arguments, which end with a null pointer. Its output goes to our standard error, because
    /// standard output is for the figures. Returns null if it cannot be started.
    static std::unique_ptr<Program> start(char* const* arguments);

    ~Program();
    Program(Program const&) = delete;
    Program& operator=(Program const&) = delete;

    pid_t id() const { return id_; }
    /// The time just before it was started.
    Clock::time_point begin() const { return begin_; }

private:
    Program(pid_t id, Clock::time_point begin);

    pid_t id_;
    Clock::time_point begin_;
};
