// SPDX-License-Identifier: MIT
#include "desktop/ExitSignals.h"

#include <QCoreApplication>

#include <array>
#include <csignal>
#include <cstdlib>
#include <sys/eventfd.h>
#include <unistd.h>

namespace {

constexpr std::array exitSignals { SIGTERM, SIGINT, SIGHUP };

// All that a signal handler may reach.
std::sig_atomic_t volatile eventOfHandler = -1;

void tellEventLoop(int /*signal*/)
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

ExitSignals::ExitSignals()
    : event_(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK))
    , notifier_(event_, QSocketNotifier::Read)
{
    QObject::connect(&notifier_, &QSocketNotifier::activated, qApp, &QCoreApplication::quit);
    eventOfHandler = event_;
    // Out of descriptors: ending at once is better than not at all.
    if (event_ >= 0)
        handleExitSignals(tellEventLoop);
}

ExitSignals::~ExitSignals()
{
    endProcess();
    notifier_.setEnabled(false);
    close(event_);
}
