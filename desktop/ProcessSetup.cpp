// SPDX-License-Identifier: MIT
#include "desktop/ProcessSetup.h"

#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <string_view>
#include <unistd.h>

void openStandardStreams()
{
    std::signal(SIGPIPE, SIG_IGN);
    // A file or socket of the program's could otherwise take the number of a closed stream.
    int descriptor = -1;
    do
        descriptor = open("/dev/null", O_RDWR);
    while (descriptor >= STDIN_FILENO && descriptor <= STDERR_FILENO);
    close(descriptor);
}

void resetSigchld() { std::signal(SIGCHLD, SIG_DFL); }

void applyDisplayOptions(int count, char** arguments)
{
    for (int i = 1; i + 1 < count; ++i) {
        std::string_view const option = arguments[i];
        if (option == "-platform" || option == "--platform")
            setenv("QT_QPA_PLATFORM", arguments[i + 1], 1);
        else if (option == "-display" || option == "--display")
            setenv("DISPLAY", arguments[i + 1], 1);
    }
}

void hideBusFromToolkit() { setenv("DBUS_SESSION_BUS_ADDRESS", "disabled:", 1); }
