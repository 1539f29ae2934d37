// SPDX-License-Identifier: MIT
#pragma once

#include "bench/programs/Clock.h"

#include <memory>
#include <sys/types.h>

/// A program that was started to be measured. It ends with this object, at last by force.
class Program {
public:
    /// Starts it with these arguments, a null pointer behind the last. What it writes goes to our standard error, for
    /// our standard output is for the figures. Nothing when it cannot be started.
    static std::unique_ptr<Program> start(char* const* arguments);

    ~Program();
    Program(Program const&) = delete;
    Program& operator=(Program const&) = delete;

    pid_t id() const { return id_; }
    /// Just before it was started.
    Clock::time_point begin() const { return begin_; }

private:
    Program(pid_t id, Clock::time_point begin);

    pid_t id_;
    Clock::time_point begin_;
};
