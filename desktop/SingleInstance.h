// SPDX-License-Identifier: MIT
#pragma once

#include "desktop/Bus.h"

#include <functional>
#include <string>

/// Limits the program to one instance per session. The first owns the bus name, and later ones activate it through
/// org.freedesktop.Application (freedesktop.org's D-Bus activation).
class SingleInstance final {
public:
    /// The identifier is the bus name; the object's path is derived from it.
    SingleInstance(std::string identifier, Bus& bus);
    /// Releases the name without blocking.
    ~SingleInstance();
    SingleInstance(SingleInstance const&) = delete;
    SingleInstance& operator=(SingleInstance const&) = delete;

    enum class Outcome { IsFirst, ActivatedFirst, FirstIsSilent };

    /// Tries to take the name. If that fails, activates the first instance and waits some seconds for its reply; if the
    /// first instance ends meanwhile, takes over. Without a bus, this is always the first instance.
    Outcome start();

    /// Sets what happens when a later instance activates this one.
    void whenActivated(platform::Task activated) { activated_ = std::move(activated); }

private:
    static sd_bus_vtable const* members();

    bool becomeFirst();
    bool activateFirst();
    int activate(sd_bus_message* call);
    int open(sd_bus_message* call);
    int activateAction(sd_bus_message* call);

    std::string identifier_;
    std::string path_;
    Bus& bus_;
    platform::Task activated_;
    /// Cancels a queued activation on destruction.
    OncePerTurn activation_;
    BusSlot object_;
};
