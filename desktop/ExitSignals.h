// SPDX-License-Identifier: MIT
#pragma once

#include "desktop/DesktopRunLoop.h"

/// Quits the main loop, with exit status 0, on SIGTERM, SIGINT and SIGHUP. If the loop does not react within two
/// seconds, the process is ended. Only one instance may exist.
class ExitSignals final {
public:
    /// For use before there is a main loop: makes the signals end the process at once, with exit status 0.
    static void endProcess();

    explicit ExitSignals(DesktopRunLoop& loop);
    /// Restores the effect of endProcess().
    ~ExitSignals();
    ExitSignals(ExitSignals const&) = delete;
    ExitSignals& operator=(ExitSignals const&) = delete;

private:
    platform::Descriptor event_;
    std::unique_ptr<DesktopRunLoop::Watch> watch_;
};
