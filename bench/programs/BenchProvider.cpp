// SPDX-License-Identifier: MIT
// The stand-in provider, extended with the largest and worst replies: usage-meter-bench-provider FOLDER
#include "demo/Provider.h"

#include "platform/UrlLoader.h"
#include "services/ReplyText.h"

#include <csignal>
#include <cstdlib>
#include <initializer_list>
#include <iostream>

namespace {

// Allows for the text around a filling.
constexpr std::size_t frame = 1024;

// A "#" in each piece is replaced with its number.
std::string filling(std::string_view piece, std::size_t room)
{
    auto const mark = piece.find('#');
    std::string text;
    for (std::size_t number = 1; text.size() < room; ++number) {
        text += piece.substr(0, mark);
        if (mark != std::string_view::npos)
            text.append(std::to_string(number)).append(piece.substr(mark + 1));
    }
    return text;
}

std::string figureOf(std::string const& text)
{
    return "<usage><total><download>" + text + "</download></total></usage>";
}

demo::Reply manyHeaders()
{
    demo::Reply reply { demo::lookupBody("demohome") };
    for (int number = 10'000; number < 60'000; ++number)
        reply.headers.emplace("a" + std::to_string(number), "");
    return reply;
}

// Sets replies of the maximum size of a body, and of a reply that is parsed.
void setWorstReports(demo::Provider& provider, std::string const& prefix, std::size_t size)
{
    auto const filled = [size](std::string_view piece) { return filling(piece, size - frame); };
    provider.setReport(prefix + "space", figureOf("1" + filled(" ")));
    provider.setReport(prefix + "digits", figureOf(filled("9")));
    provider.setReport(prefix + "references", figureOf(filled("&#49;")));
    provider.setReport(prefix + "elements", "<usage>" + filled("<a/>") + "</usage>");
    provider.setReport(prefix + "names", "<usage>" + filled("<a#/>") + "</usage>");
    provider.setReport(prefix + "attributes", "<usage " + filled("a#='' ") + "/>");
    provider.setReport(prefix + "comment", "<usage><!--" + filled(" ") + "--></usage>");
    provider.setReport(prefix + "nested", filled("<a>"));
}

void setWorstReplies(demo::Provider& provider)
{
    setWorstReports(provider, "large", platform::maximumBodySize);
    setWorstReports(provider, "read", maximumReplySize);
    provider.setReport("largest", filling("<a/>", 2 * platform::maximumBodySize));
    provider.setReply("headers", manyHeaders());
}

int fail(std::string_view message)
{
    std::cerr << "usage-meter-bench-provider: " << message << '\n';
    return EXIT_FAILURE;
}

}

int main(int argumentCount, char** arguments)
{
    if (argumentCount != 2)
        return fail("usage: usage-meter-bench-provider FOLDER");
    // Blocked before any thread starts, so that the main thread receives the signals.
    sigset_t signals;
    sigemptyset(&signals);
    for (int const signal : { SIGTERM, SIGINT, SIGHUP })
        sigaddset(&signals, signal);
    pthread_sigmask(SIG_BLOCK, &signals, nullptr);

    auto const files = demo::ensureCertificate(arguments[1]);
    auto const provider = files ? demo::Provider::start(*files) : nullptr;
    if (!provider)
        return fail("cannot serve");
    setWorstReplies(*provider);
    std::cout << "https://" << provider->host() << std::endl;

    int received = 0;
    sigwait(&signals, &received);
    return EXIT_SUCCESS;
}
