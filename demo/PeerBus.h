// SPDX-License-Identifier: MIT
#pragma once

#include "desktop/Bus.h"

#include <poll.h>
#include <sys/socket.h>
#include <systemd/sd-id128.h>

#include <array>

/// Connects the program directly to a panel, without a message bus. Both ends run in this process, in one main loop or
/// two, where whatever is in transit between them is due.
class PeerBus {
public:
    PeerBus(DesktopRunLoop& programLoop, DesktopRunLoop& panelLoop)
        : PeerBus(programLoop, panelLoop, connectedSockets())
    {
        settle();
    }

    /// Runs what is due in a main loop and whatever follows from it. Returns false if nothing was due.
    static bool runDue(DesktopRunLoop& loop)
    {
        pollfd due { loop.descriptor(), POLLIN, 0 };
        bool ran = false;
        for (; ::poll(&due, 1, 0) > 0; ran = true)
            loop.runDue();
        return ran;
    }

    /// Runs both ends until nothing is due.
    void settle() const
    {
        while (runDue(program.loop()) || runDue(panel.loop())) { }
    }

    Bus program;
    Bus panel;

private:
    using Sockets = std::array<int, 2>;

    PeerBus(DesktopRunLoop& programLoop, DesktopRunLoop& panelLoop, Sockets sockets)
        : program(programLoop, connectionOn(sockets[0], true))
        , panel(panelLoop, connectionOn(sockets[1], false))
    {
    }

    static Sockets connectedSockets()
    {
        Sockets sockets { -1, -1 };
        ::socketpair(AF_UNIX, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0, sockets.data());
        return sockets;
    }

    // Takes ownership of the socket.
    static BusConnection connectionOn(int socket, bool isServer)
    {
        sd_bus* bus = nullptr;
        sd_bus_new(&bus);
        BusConnection connection(bus);
        sd_bus_set_fd(bus, socket, socket);
        sd_id128_t id {};
        sd_id128_randomize(&id);
        if (isServer)
            sd_bus_set_server(bus, 1, id);
        sd_bus_start(bus);
        return connection;
    }
};
