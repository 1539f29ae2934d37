// SPDX-License-Identifier: MIT
#include "platform/ProcessUrlLoader.h"

#include "tests/support/TemporaryFolder.h"
#include "tests/support/TlsServer.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <future>
#include <map>

using namespace std::chrono_literals;
using namespace std::string_literals;
using platform::ProcessUrlLoader;

namespace {

std::filesystem::path const helper = USAGE_METER_FETCH;
std::string const longest(8UL * 1024 * 1024, 'x');

std::string outputOf(char const* command)
{
    std::unique_ptr<std::FILE, decltype(&::pclose)> const pipe(::popen(command, "r"), &::pclose);
    std::string output(1'000'000, ' ');
    output.resize(std::fread(output.data(), 1, output.size(), pipe.get()));
    return output;
}

std::string response(std::string const& body, std::string const& header = "Connection: close")
{
    return "HTTP/1.1 200 OK\r\nContent-Length: " + std::to_string(body.size()) + "\r\n" + header + "\r\n\r\n" + body;
}

std::string redirect(std::string const& location) { return "HTTP/1.1 302 Found\r\nLocation: " + location + "\r\n\r\n"; }

class UrlLoaderTest : public testing::Test {
protected:
    using Texts = std::map<std::string, std::string>;

    TlsServer serve(Texts const& replies, ServerCertificate certificate = ServerCertificate::good)
    {
        return { folder.path(), certificate, [replies](std::string const& path) { return replies.at(path); } };
    }

    TemporaryFolder folder;
};

}

TEST_F(UrlLoaderTest, AWholeTextIsLoadedWhateverItsStatus)
{
    TlsServer const server = serve({
        { "/error", "HTTP/1.1 500 Internal Server Error\r\nConnection: close\r\n\r\nsorry" },
        { "/empty", response("") },
        { "/nul", response("a\0b"s) },
        { "/limit", response(longest) },
        { "/gzip", response(outputOf("printf hello | gzip -c"), "Content-Encoding: gzip") },
        { "/until-closed", "HTTP/1.1 200 OK\r\n\r\nh\u00E9llo" },
        { "/moved", redirect("/until-closed") },
    });
    ProcessUrlLoader loader(helper, server.authority());
    Texts const bodies { { "/error", "sorry" }, { "/empty", "" }, { "/nul", "a\0b"s }, { "/limit", longest },
        { "/gzip", "hello" }, { "/until-closed", "h\u00E9llo" }, { "/moved", "h\u00E9llo" } };
    for (auto const& [path, body] : bodies)
        EXPECT_TRUE(loader.load(server.address() + path) == body) << path;
}

TEST_F(UrlLoaderTest, NothingComesOfALoadThatWentWrong)
{
    // Where the addresses and redirects lead that must not be followed.
    TlsServer const target = serve({ { "/", response("hello") } });
    std::string const host = target.address().substr("https://"s.size());
    Texts const replies {
        { "/cut", "HTTP/1.1 200 OK\r\nContent-Length: 10\r\n\r\nhello" },
        { "/cut-chunk", "HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n5\r\nhello\r\n" },
        { "/large", response(longest + 'x') },
        { "/bomb", response(outputOf("head -c 100M /dev/zero | gzip -c"), "Content-Encoding: gzip") },
        { "/not-gzip", response("hello", "Content-Encoding: gzip") },
        { "/latin-1", response("caf\xE9") },
        { "/not-http", "hello" },
        { "/to-http", redirect("http://" + host + "/") },
        { "/to-file", redirect("file:///etc/passwd") },
        { "/to-user", redirect("https://user:word@" + host + "/") },
        { "/loop", redirect("/loop") },
    };
    TlsServer const server = serve(replies);
    ProcessUrlLoader loader(helper, server.authority());
    for (auto const& [path, reply] : replies)
        EXPECT_FALSE(loader.load(server.address() + path)) << path;
    EXPECT_EQ(server.connections(), static_cast<int>(replies.size()) + 10) << "a loop is followed ten times";

    for (std::string const& url : { ""s, host, "http://" + host + "/", "https://user@" + host + "/",
             "file:///etc/passwd"s, "https://localhost:1/"s, target.address() + "/a b", target.address() + "/%4G" })
        EXPECT_FALSE(loader.load(url)) << url;
    for (char const* missing : { "/nonexistent", "/bin/false", "/", "" })
        EXPECT_FALSE(ProcessUrlLoader(missing).load(target.address() + "/")) << missing;
    EXPECT_EQ(target.connections(), 0);
}

TEST_F(UrlLoaderTest, OnlyAValidCertificateOfATrustedAuthorityIsAccepted)
{
    using enum ServerCertificate;
    for (auto const certificate : { good, expired, wrongHost }) {
        TlsServer const server = serve({ { "/", response("hello") } }, certificate);
        auto const loads = [&](std::filesystem::path const& authority) {
            return ProcessUrlLoader(helper, authority).load(server.address() + "/").has_value();
        };
        EXPECT_EQ(loads(server.authority()), certificate == good);
        EXPECT_FALSE(loads("") || loads("/nonexistent.pem"));
    }
}

TEST_F(UrlLoaderTest, CancellingEndsALoadAtOnceWhetherItWaitsForTlsOrForTheAnswer)
{
    std::promise<void> requested;
    std::promise<void> released;
    TlsServer const server(folder.path(), ServerCertificate::good, [&](std::string const&) {
        requested.set_value();
        released.get_future().wait();
        return ""s;
    });
    ProcessUrlLoader loader(helper, server.authority());
    auto const load = [&] { return loader.load(server.address() + "/").has_value(); };
    auto first = std::async(std::launch::async, load);
    requested.get_future().wait_for(10s);
    auto second = std::async(std::launch::async, load);
    // By then the timers of a connection attempt are over, which would end the waiting by themselves.
    EXPECT_EQ(second.wait_for(400ms), std::future_status::timeout);

    loader.cancel();
    EXPECT_EQ(first.wait_for(200ms), std::future_status::ready);
    EXPECT_EQ(second.wait_for(200ms), std::future_status::ready);
    EXPECT_FALSE(first.get() || second.get() || load());
    released.set_value();
}
