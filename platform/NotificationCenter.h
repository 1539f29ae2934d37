// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <string>

namespace platform {

struct UserNotification {
    std::string title;
    std::string informativeText;
};

/// Names a delivered notification.
using NotificationId = std::uint32_t;

class NotificationCenterDelegate {
public:
    virtual ~NotificationCenterDelegate() = default;
    /// The user clicked a notification of this program.
    virtual void didActivateNotification(NotificationId id) = 0;
};

/// The desktop's notifications. Errors are ignored. Main thread only.
class NotificationCenter {
public:
    virtual ~NotificationCenter() = default;

    virtual void setDelegate(NotificationCenterDelegate* delegate) = 0;
    virtual void deliver(UserNotification const& notification) = 0;
    virtual void removeDelivered(NotificationId id) = 0;
};

}
