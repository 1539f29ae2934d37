// SPDX-License-Identifier: MIT
// Makes one HTTPS exchange for Usage Meter, which talks to it over its standard input and output: in come two lines,
// the file of an additional certificate authority (or nothing) and the address; out goes the body. Exit status 0 says
// that the body is whole. The address holds the user's key, so it never stands in the arguments.
#include "fetch/HttpsLoad.h"

#include <csignal>
#include <cstdlib>
#include <iostream>
#include <sys/prctl.h>
#include <sys/resource.h>

namespace {

// An exchange takes a twentieth of a second of the processor's time. Libcurl passes over the body of a proxy's refusal
// without asking how long it is. Soft and hard limit are the same, so that the kernel ends the process without a core
// file, which would hold the key, as would that of a crash.
void limitResources()
{
    constexpr rlimit processorSeconds { 10, 10 };
    constexpr rlimit coreSize { 0, 0 };
    setrlimit(RLIMIT_CPU, &processorSeconds);
    setrlimit(RLIMIT_CORE, &coreSize);
}

}

int main()
{
    limitResources();
    // Libcurl would write the secrets of TLS to that file, with which others could read what was sent.
    unsetenv("SSLKEYLOGFILE");
    // It has no work without the program that started it. TLS writes to a peer that hung up must fail, not end it.
    prctl(PR_SET_PDEATHSIG, SIGKILL);
    std::signal(SIGPIPE, SIG_IGN);

    std::string additionalAuthority;
    std::string url;
    if (!std::getline(std::cin, additionalAuthority) || !std::getline(std::cin, url))
        return EXIT_FAILURE;
    auto const body = loadOverHttps(url, additionalAuthority);
    if (!body)
        return EXIT_FAILURE;
    std::cout << *body << std::flush;
    return std::cout ? EXIT_SUCCESS : EXIT_FAILURE;
}
