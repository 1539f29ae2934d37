// SPDX-License-Identifier: MIT
#include "platform/AtomicFile.h"
#include "platform/Descriptor.h"
#include "platform/ProcessUrlLoader.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/support/TlsServer.h"

#include <gtest/gtest.h>

#include <fcntl.h>
#include <future>
#include <map>

using namespace std::chrono_literals;
using namespace std::string_literals;
using platform::ProcessUrlLoader;

namespace {

using Clock = std::chrono::steady_clock;

std::filesystem::path const helper = USAGE_METER_FETCH;
std::string const ok = "HTTP/1.1 200 OK\r\n";

TlsReply response(std::string const& body, std::string const& header = "Connection: close")
{
    return { ok + "Content-Length: " + std::to_string(body.size()) + "\r\n" + header + "\r\n\r\n" + body };
}

TlsReply redirect(std::string const& location)
{
    return { "HTTP/1.1 302 Found\r\nLocation: " + location + "\r\n\r\n" };
}

struct UrlLoaderTest : testing::Test {
    std::string outputOf(std::string const& command) const
    {
        auto const file = folder.path() / "output";
        EXPECT_EQ(std::system((command + " >" + file.string()).c_str()), 0);
        return platform::readFile(file).value_or("");
    }

    static std::optional<std::string> load(TlsServer const& server, std::string const& path)
    {
        return ProcessUrlLoader(helper, server.authority()).load(server.address() + path);
    }

    TemporaryFolder folder;
};

}

TEST_F(UrlLoaderTest, AReplyIsAWholeTextOrNothingWhateverItsStatus)
{
    // Where redirects and addresses lead that must not be followed.
    TlsServer const target(folder.path(), {}, [](auto const&) { return response("hello"); });
    std::string const piece(65536, 'x'), host = target.address().substr("https://"s.size()),
                                         length = "Content-Length: ";
    std::map<std::string, std::pair<TlsReply, std::optional<std::string>>> const cases {
        { "/error", { { "HTTP/1.1 500 Internal Server Error\r\n\r\nh\u00E9llo" }, "h\u00E9llo" } },
        { "/nul", { response("a\0b"s), "a\0b"s } },
        { "/gzip", { response(outputOf("printf hello | gzip"), "Content-Encoding: gzip"), "hello" } },
        { "/moved", { redirect("/error"), "h\u00E9llo" } },
        { "/limit", { { ok + length + "8388608\r\n\r\n", piece }, std::string(8'388'608, 'x') } },
        { "/large", { { ok + length + "8388609\r\n\r\n", piece }, {} } },
        { "/bomb", { response(outputOf("head -c 20M /dev/zero | gzip -1"), "Content-Encoding: gzip"), {} } },
        { "/latin-1", { response("caf\xE9"), {} } },
        { "/to-http", { redirect("http://" + host + "/"), {} } },
        { "/to-user", { redirect("https://user:word@" + host + "/"), {} } },
        { "/loop", { redirect("/loop"), {} } },
        { "/endless-header", { { ok, "a: b\r\n" }, {} } },
        { "/endless-trailer", { { ok + "Transfer-Encoding: chunked\r\n\r\n0\r\n", "a: b\r\na: b\r\n" }, {} } },
        { "/cut", { { ok + length + "10\r\n\r\nhello" }, {} } },
    };
    TlsServer const server(folder.path(), {}, [&](auto const& path) { return cases.at(path).first; });
    for (auto const& [path, expected] : cases)
        EXPECT_TRUE(load(server, path) == expected.second) << path;
    EXPECT_EQ(server.connections(), static_cast<int>(cases.size()) + 11) << "a loop is followed ten times";
    for (std::string const& url : { "http://" + host + "/", "https://user@" + host + "/", "https://localhost:1/"s,
             target.address() + "/a b", target.address() + "/%4G", target.address() + "/%4" })
        EXPECT_FALSE(ProcessUrlLoader(helper, server.authority()).load(url)) << url;
    EXPECT_EQ(target.connections(), 0);
}

TEST_F(UrlLoaderTest, OnlyACertificateOfATrustedAuthorityForThatHostIsAccepted)
{
    for (auto const fault : { ServerFault::none, ServerFault::wrongHost }) {
        TlsServer const server(folder.path(), fault, [](auto const&) { return response("hello"); });
        EXPECT_EQ(load(server, "/"), fault == ServerFault::none ? std::optional("hello") : std::nullopt);
        EXPECT_FALSE(ProcessUrlLoader(helper).load(server.address() + "/"));
    }
}

TEST_F(UrlLoaderTest, NoHelperHoldsALoadBeyondTheLimit)
{
    EXPECT_FALSE(ProcessUrlLoader("/nonexistent").load("https:"));
    for (char const* hangs : { "kill -STOP $$", "while :; do echo x; sleep 0.01; done", "exec cat /dev/zero",
             "cat >/dev/null; exec >&-; exec sleep 60 <&-" }) {
        // The longer address is more than the channel holds.
        for (std::size_t const length : { 1UL, 1'000'000UL }) {
            auto const start = Clock::now();
            EXPECT_FALSE(ProcessUrlLoader(folder.script(hangs), {}, 200ms).load("https:" + std::string(length, '/')));
            EXPECT_LT(Clock::now() - start, 10s) << hangs;
        }
    }
}

TEST_F(UrlLoaderTest, TheHelperInheritsThreeStreamsOnly)
{
    platform::Descriptor const inheritable(::open("/dev/null", O_RDONLY));
    EXPECT_EQ(ProcessUrlLoader(folder.script("cat >/dev/null; exec ls /proc/self/fd")).load("https:/"), "0\n1\n2\n3\n")
        << "the last one is that of ls";
}

TEST_F(UrlLoaderTest, NobodyIsToldAConnectionsSecrets)
{
    TlsServer const server(folder.path(), {}, [](auto const&) { return response("hello"); });
    auto const secrets = folder.path() / "secrets";
    ::setenv("SSLKEYLOGFILE", secrets.c_str(), 1);
    EXPECT_EQ(load(server, "/"), "hello");
    ::unsetenv("SSLKEYLOGFILE");
    EXPECT_FALSE(std::filesystem::exists(secrets));
}

TEST_F(UrlLoaderTest, FourLoadsRunAtATimeInTheOrderTheyCameUntilAllAreCancelled)
{
    // Each helper leaves its process under its load's number, and hangs.
    ProcessUrlLoader loader(
        folder.script("cd ${0%/*}; read -r _; read -r url; echo $$ >$$; mv $$ ${url#https:}; exec sleep 60"));
    auto const isStarted
        = [this](int number) { return std::filesystem::exists(folder.path() / std::to_string(number)); };
    std::vector<std::future<bool>> loads;
    auto const expectLast = [&](int number) {
        for (auto const end = Clock::now() + 10s; Clock::now() < end && !isStarted(number);)
            std::this_thread::yield();
        EXPECT_EQ(loads.back().wait_for(100ms), std::future_status::timeout);
        EXPECT_TRUE(isStarted(number) && !isStarted(number + 1)) << number;
    };
    for (int number = 1; number <= 6; ++number) {
        loads.push_back(std::async(std::launch::async,
            [&loader, number] { return loader.load("https:" + std::to_string(number)).has_value(); }));
        expectLast(std::min(number, 4));
    }
    outputOf("kill -9 $(cat " + (folder.path() / "3").string() + ")");
    expectLast(5);

    auto const start = Clock::now();
    loader.cancel();
    for (auto& load : loads)
        EXPECT_FALSE(load.get());
    EXPECT_LT(Clock::now() - start, 1s);
    EXPECT_FALSE(loader.load("https:6") || isStarted(6));
}
