// SPDX-License-Identifier: MIT
// The stand-in provider, with the largest and worst answers besides: usage-meter-bench-provider FOLDER
#include "demo/Provider.h"

#include "platform/UrlLoader.h"

#include <csignal>
#include <cstdlib>
#include <initializer_list>
#include <iostream>

namespace {

// As large as a body may be, less what stands around the filling.
constexpr std::size_t room = platform::maximumBodySize - 1024;

// Each piece has its number in place of a "#".
std::string filling(std::string_view piece)
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

void setWorstReplies(demo::Provider& provider)
{
    provider.setReport("benchspace", figureOf("1" + filling(" ")));
    provider.setReport("benchdigits", figureOf(filling("9")));
    provider.setReport("benchreferences", figureOf(filling("&#49;")));
    provider.setReport("benchelements", "<usage>" + filling("<a/>") + "</usage>");
    provider.setReport("benchnames", "<usage>" + filling("<a#/>") + "</usage>");
    provider.setReport("benchattributes", "<usage " + filling("a#='' ") + "/>");
    provider.setReport("benchcomment", "<usage><!--" + filling(" ") + "--></usage>");
    provider.setReport("benchnested", filling("<a>"));
    provider.setReport("benchtoolarge", filling("<a/>") + filling("<a/>"));
    provider.setReply("benchheaders", manyHeaders());
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
    // Blocked before any thread starts, so that the signals wait for the main thread.
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
