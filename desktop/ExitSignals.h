// SPDX-License-Identifier: MIT
#pragma once

#include "desktop/DesktopRunLoop.h"

/// Quits the main loop, with exit status 0, on SIGTERM, SIGINT and SIGHUP; one that does not come to it within two
/// seconds ends with the process. One at a time.
class ExitSignals final {
public:
    /// Until there is a main loop: the signals end the process at once, with exit status 0.
    static void endProcess();

    explicit ExitSignals(DesktopRunLoop& loop);
    /// The signals end the process again.
    ~ExitSignals();
    ExitSignals(ExitSignals const&) = delete;
    ExitSignals& operator=(ExitSignals const&) = delete;

private:
    platform::Descriptor event_;
    std::unique_ptr<DesktopRunLoop::Watch> watch_;
};
