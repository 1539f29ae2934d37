// SPDX-License-Identifier: MIT
#pragma once

#include "bench/parts/Benchmarks.h"

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QEventLoop>
#include <QTimer>

#include <chrono>

/// The toolkit's event loop as the program runs it, asleep between events.
class MainLoop {
public:
    MainLoop() { waker_.start(std::chrono::seconds(1)); }

    /// Runs it until the condition holds, which is looked at after each event; ends the run after ten seconds.
    template <typename Condition> void runUntil(Condition const& holds)
    {
        QDeadlineTimer const bound(std::chrono::seconds(10));
        while (!holds()) {
            require(!bound.hasExpired(), "what is waited for comes");
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
        }
    }

    /// Runs it for this time.
    void rest(std::chrono::milliseconds time)
    {
        QEventLoop loop;
        QTimer::singleShot(time, &loop, &QEventLoop::quit);
        loop.exec();
    }

private:
    /// Without it a wait in vain would never wake.
    QTimer waker_;
};
