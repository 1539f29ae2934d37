// SPDX-License-Identifier: MIT
#pragma once

#include "platform/Property.h"

namespace platform {
struct Platform;
}
struct Outlets;

/// Keeps the preferences' check box for starting at login in step with the desktop, which other programs change too.
/// Stores what the user chooses, and shows an alert if that fails. Hides the box where the desktop has no such setting.
/// Main thread only.
class StartAtLogin final {
public:
    StartAtLogin(platform::Platform& platform, Outlets& outlets);
    StartAtLogin(StartAtLogin const&) = delete;
    StartAtLogin& operator=(StartAtLogin const&) = delete;

private:
    void show();
    void change();

    platform::Platform& platform_;
    Outlets& outlets_;
    platform::Subscription windowObservation_;
};
