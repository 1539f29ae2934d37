// SPDX-License-Identifier: MIT
// Makes one HTTPS exchange for Usage Meter. It reads two lines from standard input, the file of an additional
// certificate authority (may be empty) and the URL, and writes the body to standard output. Exit status 0 means that
// the body is complete. The URL contains the user's key, so it is never passed as an argument.
#include "fetch/HttpsLoad.h"

#include <csignal>
#include <cstdlib>
#include <iostream>
#include <sys/prctl.h>
#include <sys/resource.h>

namespace {

// An exchange takes a twentieth of a second of processor time, but libcurl discards the body of a proxy's refusal
// without limiting its size. Soft and hard limit are equal, so that the kernel kills the process without a core file. A
// core file, also after a crash, would contain the key.
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
    // Libcurl would write TLS secrets to that file, with which others could decrypt the traffic.
    unsetenv("SSLKEYLOGFILE");
    // The helper is useless without the program that started it. Writing to a peer that hung up must fail rather than
    // kill the process.
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
