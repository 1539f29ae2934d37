// SPDX-License-Identifier: MIT
#include "platform/AtomicFile.h"
#include "platform/Descriptor.h"
#include "platform/ProcessUrlLoader.h"
#include "tests/support/Slowness.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/support/TlsServer.h"

#include <gtest/gtest.h>

#include <csignal>
#include <cstdio>
#include <fcntl.h>
#include <fstream>
#include <future>
#include <map>
#include <sys/resource.h>

using namespace std::chrono_literals;
using namespace std::string_literals;
using platform::ProcessUrlLoader;

namespace {

using Clock = std::chrono::steady_clock;

std::filesystem::path const helper = USAGE_METER_FETCH;
std::string const ok = "HTTP/1.1 200 OK\r\n";
std::string const chunked = ok + "Transfer-Encoding: chunked\r\n\r\n";
std::string const piece(65536, 'x');

std::string outputOf(char const* command)
{
    auto const close = [](std::FILE* pipe) { ::pclose(pipe); };
    std::unique_ptr<std::FILE, decltype(close)> const pipe(::popen(command, "r"), close);
    std::string output(1'000'000, ' ');
    output.resize(std::fread(output.data(), 1, output.size(), pipe.get()));
    return output;
}

TlsReply response(std::string const& body, std::string const& header = "Connection: close")
{
    return { ok + "Content-Length: " + std::to_string(body.size()) + "\r\n" + header + "\r\n\r\n" + body };
}

TlsReply redirect(std::string const& location)
{
    return { "HTTP/1.1 302 Found\r\nLocation: " + location + "\r\n\r\n" };
}

class UrlLoaderTest : public testing::Test {
protected:
    using Replies = std::map<std::string, TlsReply>;

    /// Whatever comes, neither the program nor its helper takes more than this.
    ~UrlLoaderTest() override
    {
        if (slowness > 1)
            return; // A sanitizer takes more itself.
        for (auto const who : { RUSAGE_SELF, RUSAGE_CHILDREN }) {
            rusage usage {};
            ::getrusage(who, &usage);
            EXPECT_LT(usage.ru_maxrss, 48 * 1024);
        }
    }

    TlsServer serve(Replies const& replies, ServerFault fault = ServerFault::none)
    {
        return { folder.path(), fault, [replies](std::string const& path) { return replies.at(path); } };
    }

    /// A script for the helper's place.
    std::filesystem::path scriptOf(std::string const& lines) const
    {
        auto script = folder.path() / "helper";
        std::ofstream(script) << "#!/bin/sh\n" << lines << '\n';
        std::filesystem::permissions(script, std::filesystem::perms::owner_all);
        return script;
    }

    TemporaryFolder folder;
};

}

TEST_F(UrlLoaderTest, AWholeTextIsLoadedWhateverItsStatus)
{
    std::vector<std::tuple<std::string, TlsReply, std::string>> const cases {
        { "/error", { "HTTP/1.1 500 Internal Server Error\r\nConnection: close\r\n\r\nsorry" }, "sorry" },
        { "/empty", response(""), "" },
        { "/nul", response("a\0b"s), "a\0b"s },
        { "/limit", { ok + "Content-Length: 8388608\r\n\r\n", Ending::closed, piece }, std::string(8'388'608, 'x') },
        { "/gzip", response(outputOf("printf hello | gzip -c"), "Content-Encoding: gzip"), "hello" },
        { "/until-closed", { ok + "\r\nh\u00E9llo", Ending::closed }, "h\u00E9llo" },
        { "/moved", redirect("/until-closed"), "h\u00E9llo" },
    };
    Replies replies;
    for (auto const& [path, reply, body] : cases)
        replies.emplace(path, reply);
    TlsServer const server = serve(replies);
    ProcessUrlLoader loader(helper, server.authority());
    for (auto const& [path, reply, body] : cases)
        EXPECT_TRUE(loader.load(server.address() + path) == body) << path;
}

TEST_F(UrlLoaderTest, NothingComesOfALoadThatWentWrong)
{
    // Where the addresses and redirects lead that must not be followed.
    TlsServer const target = serve({ { "/", response("hello") } });
    std::string const host = target.address().substr("https://"s.size());
    Replies replies {
        { "/large", { ok + "Content-Length: 8388609\r\n\r\n", Ending::closed, piece } },
        { "/bomb", response(outputOf("head -c 20M /dev/zero | gzip -1c | gzip -c"), "Content-Encoding: gzip, gzip") },
        { "/latin-1", response("caf\xE9") },
        { "/to-http", redirect("http://" + host + "/") },
        { "/to-file", redirect("file:///etc/passwd") },
        { "/to-user", redirect("https://user:word@" + host + "/") },
        { "/loop", redirect("/loop") },
        { "/endless-header", { ok, Ending::closed, "a: b\r\n" } },
        { "/endless-continue", { "", Ending::closed, "HTTP/1.1 100 Continue\r\n\r\n" } },
        { "/endless-trailer", { chunked + "0\r\n", Ending::closed, "a: b\r\na: b\r\na: b\r\na: b\r\n" } },
        { "/cut", { ok + "Content-Length: 10\r\n\r\nhello" } },
        { "/cut-chunk", { chunked + "5\r\nhel" } },
        { "/reset", { ok + "\r\nhello", Ending::reset } },
    };
    TlsServer const server = serve(replies);
    ProcessUrlLoader loader(helper, server.authority());
    for (auto const& [path, reply] : replies)
        EXPECT_FALSE(loader.load(server.address() + path)) << path;
    EXPECT_EQ(server.connections(), static_cast<int>(replies.size()) + 10) << "a loop is followed ten times";

    for (std::string const& url : { ""s, host, "http://" + host + "/", "https://user@" + host + "/",
             "file:///etc/passwd"s, "https://localhost:1/"s, "https://" + std::string(64, 'a') + ".example/",
             target.address() + "/a b", target.address() + "/%4G" })
        EXPECT_FALSE(loader.load(url)) << url;
    for (char const* missing : { "/nonexistent", "/bin/false", "/", "" })
        EXPECT_FALSE(ProcessUrlLoader(missing).load(target.address() + "/")) << missing;
    EXPECT_EQ(target.connections(), 0);
}

TEST_F(UrlLoaderTest, OnlyAValidCertificateOfATrustedAuthorityIsAccepted)
{
    using enum ServerFault;
    // What the system is content with is not asked: it may be told to be content with TLS 1.0.
    std::ofstream(folder.path() / "openssl.cnf") << "openssl_conf = a\n[a]\nssl_conf = b\n[b]\nsystem_default = c\n"
                                                    "[c]\nMinProtocol = TLSv1\nCipherString = ALL:@SECLEVEL=0\n";
    ::setenv("OPENSSL_CONF", (folder.path() / "openssl.cnf").c_str(), 1);
    for (auto const fault : { none, expired, notYetValid, wrongHost, selfSigned, oldProtocol }) {
        TlsServer const server = serve({ { "/", response("hello") } }, fault);
        auto const loads = [&](std::filesystem::path const& authority) {
            return ProcessUrlLoader(helper, authority).load(server.address() + "/").has_value();
        };
        EXPECT_EQ(loads(server.authority()), fault == none) << static_cast<int>(fault);
        EXPECT_FALSE(loads("") || loads("/nonexistent.pem"));
    }
    ::unsetenv("OPENSSL_CONF");
}

TEST_F(UrlLoaderTest, AHelperThatHangsIsEndedAtTheLimit)
{
    for (char const* hangs : { "kill -STOP $$", "while :; do echo x; sleep 0.01; done", "exec cat /dev/zero",
             "cat >/dev/null; exec >&-; exec sleep 60 <&-" }) {
        auto const script = scriptOf(hangs);
        // The longer address is more than the channel holds.
        for (std::size_t const length : { 1UL, 1'000'000UL }) {
            auto const start = Clock::now();
            EXPECT_FALSE(ProcessUrlLoader(script, {}, 200ms).load("https:" + std::string(length, '/')));
            EXPECT_LT(Clock::now() - start, 10s) << hangs;
        }
    }
}

TEST_F(UrlLoaderTest, TheHelperGetsThreeStreamsAndLittleTimeAndLeavesNoTrace)
{
    platform::Descriptor const inheritable(::open("/dev/null", O_RDONLY));
    EXPECT_EQ(ProcessUrlLoader(scriptOf("cat >/dev/null; exec ls /proc/self/fd")).load("https:/"), "0\n1\n2\n3\n")
        << "the last one is that of ls";

    std::string limits;
    std::optional<TlsServer> server(std::in_place, folder.path(), ServerFault::none, [&](auto const&) {
        limits
            = outputOf("for status in $(grep -lsx PPid:.$PPID /proc/[0-9]*/status); do grep -q usage-meter $status &&"
                       " awk '/Max c/ { print $2, $(NF-2), $(NF-1) }' ${status%status}limits; done");
        return response("hello");
    });
    auto const secrets = folder.path() / "secrets";
    ::setenv("SSLKEYLOGFILE", secrets.c_str(), 1);
    EXPECT_EQ(ProcessUrlLoader(helper, server->authority()).load(server->address() + "/"), "hello");
    ::unsetenv("SSLKEYLOGFILE");
    server.reset();
    EXPECT_EQ(limits, "cpu 10 10\ncore 0 0\n");
    EXPECT_FALSE(std::filesystem::exists(secrets));
}

TEST_F(UrlLoaderTest, FourLoadsRunAtATimeAndTheOthersInTheOrderTheyCameUntilAllAreCancelled)
{
    // Each helper writes down its process and its load's number, and hangs.
    auto const list = folder.path() / "started";
    auto const script
        = scriptOf("read -r _; read -r url; echo $$ ${url#https:} >>" + list.string() + "; exec sleep 60");
    auto const started = [&list] {
        std::ifstream file(list);
        std::vector<std::pair<pid_t, int>> helpers;
        for (std::pair<pid_t, int> one; file >> one.first >> one.second;)
            helpers.push_back(one);
        return helpers;
    };
    ProcessUrlLoader loader(script), impatient(script, {}, 300ms);
    std::vector<std::future<bool>> loads;
    auto const load = [&](ProcessUrlLoader& by, int number) {
        auto const url = "https:" + std::to_string(number);
        loads.push_back(std::async(std::launch::async, [&by, url] { return by.load(url).has_value(); }));
    };
    auto const expectStarted = [&](int count) {
        for (auto const end = Clock::now() + 10s; Clock::now() < end && std::ssize(started()) < count;)
            std::this_thread::yield();
        EXPECT_EQ(loads.back().wait_for(100ms), std::future_status::timeout);
        ASSERT_EQ(std::ssize(started()), count);
        EXPECT_EQ(started().back().second, count);
    };
    for (int number = 1; number <= 6; ++number) {
        load(loader, number);
        expectStarted(std::min(number, 4));
    }
    ::kill(started()[2].first, SIGKILL);
    expectStarted(5);

    auto const start = Clock::now();
    loader.cancel();
    for (auto& one : loads)
        EXPECT_FALSE(one.get());
    EXPECT_LT(Clock::now() - start, 1s);
    EXPECT_FALSE(loader.load("https:7"));
    EXPECT_EQ(std::ssize(started()), 5);

    loads.clear();
    auto const startAgain = Clock::now();
    for (int number = 1; number <= 5; ++number)
        load(impatient, number);
    loads.clear();
    EXPECT_GE(Clock::now() - startAgain, 600ms) << "waiting does not count";
}
