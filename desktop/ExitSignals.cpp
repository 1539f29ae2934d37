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

constexpr unsigned secondsForMainLoop = 2;

// The only state that the signal handler uses.
std::sig_atomic_t volatile eventOfHandler = -1;

void notifyMainLoop(int /*signal*/)
{
    std::uint64_t const one = 1;
    [[maybe_unused]] auto const size = write(eventOfHandler, &one, sizeof one);
    // The toolkit may be blocked on a display or a bus that never answers.
    alarm(secondsForMainLoop);
}

void endProcessAtOnce(int /*signal*/) { _exit(EXIT_SUCCESS); }

void handle(int signal, void (*handler)(int))
{
    struct sigaction action {};
    action.sa_handler = handler;
    sigaction(signal, &action, nullptr);
}

void handleExitSignals(void (*handler)(int))
{
    for (int const signal : exitSignals)
        handle(signal, handler);
}

}

void ExitSignals::endProcess()
{
    handle(SIGALRM, endProcessAtOnce);
    handleExitSignals(endProcessAtOnce);
}

ExitSignals::ExitSignals(DesktopRunLoop& loop)
    : event_(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK))
    , watch_(loop.watch(event_.get(), EPOLLIN, [this, &loop] {
        eventfd_t signals = 0;
        eventfd_read(event_.get(), &signals);
        loop.quit(EXIT_SUCCESS);
    }))
{
    eventOfHandler = event_.get();
    // Without a free descriptor, the signals keep ending the process at once, which is better than ignoring them.
    if (event_.isOpen())
        handleExitSignals(notifyMainLoop);
}

ExitSignals::~ExitSignals() { endProcess(); }
