// SPDX-License-Identifier: MIT
// Makes one HTTPS exchange for Usage Meter, which talks to it over its standard input and output: in come two lines,
// the file of an additional certificate authority (or nothing) and the address; out goes the body. Exit status 0 says
// that the body is whole. The address holds the user's key, so it never stands in the arguments.
#include "fetch/HttpsLoad.h"

#include <csignal>
#include <cstdlib>
#include <iostream>
#include <sys/prctl.h>

int main()
{
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
