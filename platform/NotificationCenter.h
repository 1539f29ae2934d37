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
    /// The user clicked a notification that this program delivered.
    virtual void didActivateNotification(NotificationId id) = 0;
};

/// The desktop's notifications. Main thread only; what fails is dropped in silence.
class NotificationCenter {
public:
    virtual ~NotificationCenter() = default;

    virtual void setDelegate(NotificationCenterDelegate* delegate) = 0;
    virtual void deliver(UserNotification const& notification) = 0;
    virtual void removeDelivered(NotificationId id) = 0;
};

}
