// SPDX-License-Identifier: MIT
#include "desktop/ExitSignals.h"

#include <array>
#include <csignal>
#include <cstdlib>
#include <sys/epoll.h>
#include <sys/eventfd.h>
#include <unistd.h>

namespace {

constexpr std::array exitSignals { SIGTERM, SIGINT, SIGHUP };

// All that a signal handler may reach.
std::sig_atomic_t volatile eventOfHandler = -1;

void tellMainLoop(int /*signal*/)
{
    std::uint64_t const one = 1;
    [[maybe_unused]] auto const size = write(eventOfHandler, &one, sizeof one);
}

void endProcessAtOnce(int /*signal*/) { _exit(EXIT_SUCCESS); }

void handleExitSignals(void (*handler)(int))
{
    for (int const signal : exitSignals) {
        struct sigaction action {};
        action.sa_handler = handler;
        sigaction(signal, &action, nullptr);
    }
}

}

void ExitSignals::endProcess() { handleExitSignals(endProcessAtOnce); }

ExitSignals::ExitSignals(DesktopRunLoop& loop)
    : event_(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK))
    , watch_(loop.watch(event_.get(), EPOLLIN, [this, &loop] {
        eventfd_t signals = 0;
        eventfd_read(event_.get(), &signals);
        loop.quit(EXIT_SUCCESS);
    }))
{
    eventOfHandler = event_.get();
    // Out of descriptors: ending at once is better than not at all.
    if (event_.isOpen())
        handleExitSignals(tellMainLoop);
}

ExitSignals::~ExitSignals() { endProcess(); }
