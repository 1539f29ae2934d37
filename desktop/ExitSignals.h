// SPDX-License-Identifier: MIT
#pragma once

#include <QSocketNotifier>

/// Quits the event loop, with exit status 0, on SIGTERM, SIGINT and SIGHUP. One at a time.
class ExitSignals final {
public:
    /// Until there is an event loop: the signals end the process at once, with exit status 0.
    static void endProcess();

    ExitSignals();
    /// The signals end the process again.
    ~ExitSignals();
    ExitSignals(ExitSignals const&) = delete;
    ExitSignals& operator=(ExitSignals const&) = delete;

private:
    int event_;
    QSocketNotifier notifier_;
};
