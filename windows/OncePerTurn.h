// SPDX-License-Identifier: MIT
#pragma once

#include <QMetaObject>
#include <QObject>

#include <functional>
#include <utility>

/// Gathers what happens within one turn of the main loop: however often it is asked, its task runs once, after what is
/// already queued. Main thread only.
class OncePerTurn {
public:
    explicit OncePerTurn(std::function<void()> task)
        : task_(std::move(task))
    {
    }

    void request()
    {
        if (std::exchange(requested_, true))
            return;
        QMetaObject::invokeMethod(&context_, [this] { run(); }, Qt::QueuedConnection);
    }

private:
    void run()
    {
        requested_ = false;
        task_();
    }

    std::function<void()> task_;
    bool requested_ = false;
    /// Takes a queued run away with it.
    QObject context_;
};
