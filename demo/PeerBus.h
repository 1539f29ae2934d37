// SPDX-License-Identifier: MIT
#pragma once

#include "desktop/Bus.h"

#include <poll.h>
#include <sys/socket.h>
#include <systemd/sd-id128.h>

#include <array>

/// The program's end of a connection and a panel's, with no message bus between them. Both run in this process, in one
/// main loop or two, where whatever is under way between them is due.
class PeerBus {
public:
    PeerBus(DesktopRunLoop& programLoop, DesktopRunLoop& panelLoop)
        : PeerBus(programLoop, panelLoop, connectedSockets())
    {
        settle();
    }

    /// Runs what is due in a main loop, and what comes of it there; false when nothing was.
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

    // It closes the socket when it goes.
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
