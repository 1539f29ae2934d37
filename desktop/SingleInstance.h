// SPDX-License-Identifier: MIT
#pragma once

#include "desktop/Bus.h"

#include <functional>
#include <string>

/// Keeps the program to one instance in a session: the first owns the bus name, and every later one activates the first
/// through org.freedesktop.Application (freedesktop.org's D-Bus activation).
class SingleInstance final {
public:
    /// The identifier is the bus name, and names the object's path.
    SingleInstance(std::string identifier, Bus& bus);
    /// Gives the name back, and waits for nobody.
    ~SingleInstance();
    SingleInstance(SingleInstance const&) = delete;
    SingleInstance& operator=(SingleInstance const&) = delete;

    enum class Outcome { IsFirst, ActivatedFirst, FirstIsSilent };

    /// The first instance, also where there is no bus to tell, takes the name. A later one has the first activated, and
    /// waits some seconds for its answer; should the first end meanwhile, it is the first itself.
    Outcome start();

    /// What the first instance does when a later one activates it.
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
    /// Takes a queued activation away with it.
    OncePerTurn activation_;
    BusSlot object_;
};
