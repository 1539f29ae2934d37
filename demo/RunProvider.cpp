// SPDX-License-Identifier: MIT
#include "demo/Provider.h"

#include <charconv>
#include <csignal>
#include <cstdlib>
#include <iostream>
#include <optional>
#include <span>
#include <string_view>

namespace {

struct Options {
    std::filesystem::path folder;
    int port = 0;
};

std::optional<int> parsePort(std::string_view text)
{
    int port = 0;
    auto const [stop, error] = std::from_chars(text.data(), text.data() + text.size(), port);
    bool const valid = error == std::errc {} && stop == text.data() + text.size() && port > 0 && port < 65536;
    return valid ? std::optional { port } : std::nullopt;
}

std::optional<Options> parseOptions(std::span<char* const> arguments)
{
    Options options;
    for (std::size_t i = 1; i + 1 < arguments.size(); i += 2) {
        std::string_view const name = arguments[i];
        std::string_view const value = arguments[i + 1];
        auto const port = parsePort(value);
        if (name == "--folder")
            options.folder = value;
        else if (name == "--port" && port)
            options.port = *port;
        else
            return {};
    }
    bool const complete = arguments.size() % 2 == 1 && !options.folder.empty();
    return complete ? std::optional { options } : std::nullopt;
}

// Blocked before any thread starts, so that the main thread receives the signals.
sigset_t blockEndingSignals()
{
    sigset_t signals;
    sigemptyset(&signals);
    for (int const signal : { SIGTERM, SIGINT, SIGHUP })
        sigaddset(&signals, signal);
    pthread_sigmask(SIG_BLOCK, &signals, nullptr);
    return signals;
}

int fail(std::string_view message)
{
    std::cerr << "usage-meter-provider: " << message << '\n';
    return EXIT_FAILURE;
}

}

int main(int argumentCount, char** arguments)
{
    auto const options = parseOptions({ arguments, static_cast<std::size_t>(argumentCount) });
    if (!options)
        return fail("usage: usage-meter-provider --folder DIR [--port N]");
    auto const files = demo::ensureCertificate(options->folder);
    if (!files)
        return fail("cannot write the certificate");

    sigset_t const signals = blockEndingSignals();
    auto const provider = demo::Provider::start(*files, options->port);
    if (!provider)
        return fail("cannot serve on this port");
    std::cout << "https://" << provider->host() << std::endl;

    int received = 0;
    sigwait(&signals, &received);
    return EXIT_SUCCESS;
}
