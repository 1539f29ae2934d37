// SPDX-License-Identifier: MIT
#include "platform/AtomicFile.h"
#include "platform/ProcessUrlLoader.h"

#include "tests/support/Slowness.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/support/TlsServer.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <fstream>
#include <future>
#include <map>
#include <sys/resource.h>

using namespace std::chrono_literals;
using namespace std::string_literals;
using platform::ProcessUrlLoader;

namespace {

std::filesystem::path const helper = USAGE_METER_FETCH;
std::string const ok = "HTTP/1.1 200 OK\r\n";
std::string const chunked = ok + "Transfer-Encoding: chunked\r\n\r\n";
std::string const piece(65536, 'x');

std::string outputOf(char const* command)
{
    std::unique_ptr<std::FILE, decltype(&::pclose)> const pipe(::popen(command, "r"), &::pclose);
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

    TemporaryFolder folder;
};

}

TEST_F(UrlLoaderTest, AWholeTextIsLoadedWhateverItsStatus)
{
    TlsServer const other(folder.path() / "other", ServerFault::none, [](auto const&) { return response("hello"); });
    std::string const farAway = '/' + piece;
    std::vector<std::tuple<std::string, TlsReply, std::string>> const cases {
        { "/error", { "HTTP/1.1 500 Internal Server Error\r\nConnection: close\r\n\r\nsorry" }, "sorry" },
        { "/empty", response(""), "" },
        { "/nul", response("a\0b"s), "a\0b"s },
        { "/limit", { ok + "Content-Length: 8388608\r\n\r\n", Ending::closed, piece }, std::string(8'388'608, 'x') },
        { "/gzip", response(outputOf("printf hello | gzip -c"), "Content-Encoding: gzip"), "hello" },
        { "/gzip-twice", response(outputOf("printf hello | gzip -c | gzip -c"), "Content-Encoding: gzip, gzip"),
            "hello" },
        { "/until-closed", { ok + "\r\nh\u00E9llo" }, "h\u00E9llo" },
        { "/1.0", { "HTTP/1.0 200 OK\r\n\r\nhello" }, "hello" },
        { "/short", { ok + "Content-Length: 5\r\n\r\nhello, world" }, "hello" },
        { "/chunked-with-length",
            { ok + "Content-Length: 3\r\n" + chunked.substr(ok.size()) + "5\r\nhello\r\n0\r\n\r\n?" }, "hello" },
        { "/continue", { "HTTP/1.1 100 Continue\r\n\r\n" + response("hello").text }, "hello" },
        { "/no-content", { "HTTP/1.1 204 No Content\r\n\r\nhello" }, "" },
        { "/nowhere", { "HTTP/1.1 302 Found\r\n\r\nhello" }, "hello" },
        { "/moved", redirect("/until-closed"), "h\u00E9llo" },
        { "/moved-far", redirect(farAway), "hello" },
        { farAway, response("hello"), "hello" },
        { "/other-port", redirect(other.address() + "/"), "hello" },
        // Cut off where nothing says so: whoever reads the text has to see that its end is missing.
        { "/cut", { ok + "\r\nhello", Ending::cutOff }, "hello" },
        { "/cut-header", { ok + "Content-Le", Ending::cutOff }, "" },
    };
    Replies replies;
    for (auto const& [path, reply, body] : cases)
        replies.emplace(path, reply);
    TlsServer const server = serve(replies);
    std::ofstream(server.authority(), std::ios::app) << *platform::readFile(other.authority());
    ProcessUrlLoader loader(helper, server.authority());
    for (auto const& [path, reply, body] : cases)
        EXPECT_TRUE(loader.load(server.address() + path) == body) << path.substr(0, 100);
}

TEST_F(UrlLoaderTest, NothingComesOfALoadThatWentWrong)
{
    // Where the addresses and redirects lead that must not be followed.
    TlsServer const target = serve({ { "/", response("hello") } });
    std::string const host = target.address().substr("https://"s.size());
    auto const zeros = [](std::string const& packed) { return outputOf(("head -c 20M /dev/zero |" + packed).c_str()); };
    Replies replies {
        { "/large", { ok + "Content-Length: 8388609\r\n\r\n", Ending::closed, piece } },
        { "/bomb", response(zeros("gzip -1c"), "Content-Encoding: gzip") },
        { "/deflate-bomb", response(zeros("gzip -1c | tail -c +11"), "Content-Encoding: deflate") },
        { "/bomb-in-bomb", response(zeros("gzip -1c | gzip -c"), "Content-Encoding: gzip, gzip") },
        { "/not-gzip", response("hello", "Content-Encoding: gzip") },
        { "/latin-1", response("caf\xE9") },
        { "/not-http", { "hello" } },
        { "/to-http", redirect("http://" + host + "/") },
        { "/to-file", redirect("file:///etc/passwd") },
        { "/to-ftp", redirect("ftp://" + host + "/") },
        { "/to-data", redirect("data:text/plain,hello") },
        { "/to-user", redirect("https://user:word@" + host + "/") },
        { "/loop", redirect("/loop") },
        { "/endless", { ok + "\r\n", Ending::closed, piece } },
        { "/endless-header", { ok, Ending::closed, "a: b\r\n" } },
        { "/endless-line", { ok + "a: ", Ending::closed, piece } },
        { "/endless-continue", { "", Ending::closed, "HTTP/1.1 100 Continue\r\n\r\n" } },
        { "/endless-trailer", { chunked + "0\r\n", Ending::closed, "a: b\r\na: b\r\na: b\r\na: b\r\n" } },
        { "/reset", { ok + "\r\nhello", Ending::reset } },
    };
    auto const add = [&replies](TlsReply const& reply) {
        auto const number = std::to_string(replies.size());
        replies['/' + number] = reply;
    };
    for (auto const ending : { Ending::closed, Ending::cutOff, Ending::reset }) {
        for (auto const& text : { ""s, "HTTP/1."s, ok + "Content-Length: 10\r\n\r\nhello", chunked + "5\r\nhel",
                 chunked + "5\r\nhello\r\n" })
            add({ text, ending });
    }
    for (char const* length : { "-1", "five" })
        add({ ok + "Content-Length: " + length + "\r\n\r\nhello" });
    for (char const* size : { "z", "-5", "ffffffffffffffff", "fffffffffffffffff" })
        add({ chunked + size + "\r\nhello\r\n0\r\n\r\n" });
    TlsServer const server = serve(replies);
    ProcessUrlLoader loader(helper, server.authority());
    for (auto const& [path, reply] : replies)
        EXPECT_FALSE(loader.load(server.address() + path)) << path << ' ' << reply.text.substr(0, 100);
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
        auto const rejected = folder.path() / "rejected.pem";
        std::ofstream(rejected) << outputOf(
            ("openssl x509 -addreject serverAuth -trustout -in " + server.authority().string()).c_str());
        EXPECT_FALSE(loads("") || loads("/nonexistent.pem") || loads(rejected));
    }
    ::unsetenv("OPENSSL_CONF");
}

TEST_F(UrlLoaderTest, NothingComesOfAServerThatDoesNotGetAsFarAsARequest)
{
    for (auto const ending : { Ending::closed, Ending::reset }) {
        for (auto const& text : { ""s, "\x16\x03\x03\0\x7a\x02"s, response("hello").text }) {
            TlsServer const server(folder.path(), ServerFault::plain, [&](auto const&) {
                return TlsReply { text, ending };
            });
            EXPECT_FALSE(ProcessUrlLoader(helper, server.authority()).load(server.address() + "/")) << text;
        }
    }
}

TEST_F(UrlLoaderTest, AHelperThatHangsIsEndedAtTheLimit)
{
    auto const script = folder.path() / "helper";
    for (char const* hangs : { "kill -STOP $$", "while :; do echo x; sleep 0.01; done", "exec cat /dev/zero",
             "cat >/dev/null; exec >&-; exec sleep 60 <&-" }) {
        std::ofstream(script) << "#!/bin/sh\n" << hangs << '\n';
        std::filesystem::permissions(script, std::filesystem::perms::owner_all);
        // The longer address is more than the channel holds.
        for (std::size_t const length : { 1UL, 1'000'000UL }) {
            auto const start = std::chrono::steady_clock::now();
            EXPECT_FALSE(ProcessUrlLoader(script, {}, 200ms).load("https:" + std::string(length, '/')));
            EXPECT_LT(std::chrono::steady_clock::now() - start, 10s) << hangs;
        }
    }
}

TEST_F(UrlLoaderTest, CancellingEndsALoadAtOnceWhetherItWaitsForTlsOrForTheAnswer)
{
    std::promise<void> requested;
    std::promise<void> released;
    TlsServer const server(folder.path(), ServerFault::none, [&](std::string const&) {
        requested.set_value();
        released.get_future().wait();
        return TlsReply {};
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
