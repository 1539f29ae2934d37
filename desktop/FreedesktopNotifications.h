// SPDX-License-Identifier: MIT
#pragma once

#include "platform/NotificationCenter.h"

#include <QDBusConnection>
#include <QDBusServiceWatcher>
#include <QObject>

#include <memory>
#include <optional>

/// The notification centre over the Desktop Notifications protocol 1.2 (org.freedesktop.Notifications).
class FreedesktopNotifications final : public QObject, public platform::NotificationCenter {
    Q_OBJECT

public:
    struct Look {
        /// The icon's name in the desktop's theme.
        QString icon;
        /// Says what a click does, for services that show it on a button.
        QString actionLabel;
    };

    /// Nothing when the bus has no notification service and could start none.
    static std::unique_ptr<FreedesktopNotifications> connectTo(QDBusConnection const& bus, Look look);

    void setDelegate(platform::NotificationCenterDelegate* delegate) override { delegate_ = delegate; }
    void deliver(platform::UserNotification const& notification) override;
    void removeDelivered(platform::NotificationId id) override;

private slots:
    void actionInvoked(uint id, QString const& action);
    void notificationClosed(uint id, uint reason);
    void activationToken(uint id, QString const& token);

private:
    FreedesktopNotifications(QDBusConnection bus, Look look);

    QDBusConnection bus_;
    Look look_;
    platform::NotificationCenterDelegate* delegate_ = nullptr;
    /// The service's number of our last notification, unless it was closed.
    std::optional<uint> delivered_;
    QDBusServiceWatcher serviceOwner_;
};
