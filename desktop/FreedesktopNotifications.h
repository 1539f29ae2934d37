// SPDX-License-Identifier: MIT
#pragma once

#include "desktop/Bus.h"
#include "platform/NotificationCenter.h"

#include <memory>
#include <optional>
#include <string>

/// The notification centre over the Desktop Notifications protocol 1.2 (org.freedesktop.Notifications).
class FreedesktopNotifications final : public platform::NotificationCenter {
public:
    struct Look {
        std::string applicationName;
        /// The base name of the program's desktop entry.
        std::string identifier;
        /// The icon's name in the desktop's theme.
        std::string icon;
        /// Describes what a click does, for services that show the action as a button.
        std::string actionLabel;
    };

    /// Returns null if the bus has no notification service and cannot start one.
    static std::unique_ptr<FreedesktopNotifications> connectTo(Bus& bus, Look look);

    void setDelegate(platform::NotificationCenterDelegate* delegate) override { delegate_ = delegate; }
    void deliver(platform::UserNotification const& notification) override;
    void removeDelivered(platform::NotificationId id) override;

private:
    FreedesktopNotifications(Bus& bus, Look look);

    BusSlot listen(char const* signal, void (FreedesktopNotifications::*handler)(std::uint32_t, sd_bus_message*));
    void actionInvoked(std::uint32_t id, sd_bus_message* signal);
    void notificationClosed(std::uint32_t id, sd_bus_message* signal);
    void activationToken(std::uint32_t id, sd_bus_message* signal);

    Bus& bus_;
    Look look_;
    platform::NotificationCenterDelegate* delegate_ = nullptr;
    /// The service's id of our last notification, unless it was closed.
    std::optional<std::uint32_t> delivered_;
    BusSlot serviceOwner_;
    BusSlot actions_;
    BusSlot closings_;
    BusSlot tokens_;
    /// The pending call for the last notification.
    BusSlot delivery_;
};
