// SPDX-License-Identifier: MIT
// Tests a slow provider. All cases run at the same time.
#include "platform/ProcessUrlLoader.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/support/TlsServer.h"

#include <gtest/gtest.h>

#include <future>

using namespace std::chrono_literals;
using namespace std::string_literals;

TEST(SlowProvider, IsGivenUpAfterAMinuteOfSilenceOrFiveMinutesInAll)
{
    struct Case {
        TlsReply reply;
        std::chrono::seconds end;
        ServerFault fault = ServerFault::none;
        std::filesystem::path helper = USAGE_METER_FETCH;
    };
    TemporaryFolder const folder;
    std::string const ok = "HTTP/1.1 200 OK\r\n";
    std::vector<Case> const cases {
        { { "\x16\x03\x03\x40\0\x02\0\x3f\xfc"s, "x", 1s }, 60s, ServerFault::plain },
        { { .text = "", .staysOpen = true }, 60s, ServerFault::plain },
        { { .text = "", .staysOpen = true }, 60s },
        { { ok + "a: ", "x", 1s }, 60s },
        { { .text = ok + "Content-Length: 10\r\n\r\nhello", .staysOpen = true }, 60s },
        { { ok + "Content-Length: 100\r\n\r\n", "x", 900ms }, 90s },
        { { ok + "\r\n", "x", 500ms }, 300s },
        { {}, 315s, ServerFault::none, folder.script("kill -STOP $$") },
    };
    auto const run = [&](Case const& now, std::filesystem::path const& place) {
        TlsServer const server(place, now.fault, [&](std::string const&) { return now.reply; });
        auto const start = std::chrono::steady_clock::now();
        auto const body = platform::ProcessUrlLoader(now.helper, server.authority()).load(server.address() + "/");
        auto const time = std::chrono::steady_clock::now() - start;
        EXPECT_EQ(body.has_value(), now.end == 90s) << now.reply.text;
        EXPECT_TRUE(time > now.end - 2s && time < now.end + 10s) << now.reply.text << ": " << time / 1s << " s";
    };
    std::vector<std::future<void>> running;
    for (auto const& now : cases)
        running.push_back(std::async(std::launch::async, run, now, folder.path() / std::to_string(running.size())));
}
