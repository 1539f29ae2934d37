// SPDX-License-Identifier: MIT
#pragma once

#include <QDBusPendingCall>
#include <QDBusPendingCallWatcher>
#include <QObject>

#include <functional>

/// Hands the outcome of a D-Bus call over when it is there, unless the receiver is gone by then. Main thread only.
inline void whenFinished(
    QDBusPendingCall const& call, QObject* receiver, std::function<void(QDBusPendingCall const&)> handler)
{
    // A call on a bus that is gone has failed from the start, and a watcher would never say so.
    if (call.isFinished()) {
        handler(call);
        return;
    }
    auto* const watcher = new QDBusPendingCallWatcher(call, receiver);
    QObject::connect(watcher, &QDBusPendingCallWatcher::finished, receiver,
        [handler = std::move(handler)](QDBusPendingCallWatcher* finished) {
            finished->deleteLater();
            handler(*finished);
        });
}
