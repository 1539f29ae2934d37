// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <string_view>

namespace demo {

/// How a reply is sent: at once, after some seconds, never, or with half of the body missing.
enum class Manner { AtOnce, Slowly, Never, CutOff };

/// The reply for a usage key or a page.
struct Reply {
    std::string body = {};
    Manner manner = Manner::AtOnce;
    int status = 200;
    /// If empty, XML for a usage key and HTML for a page.
    std::string contentType = {};
    /// Additional headers, such as "Location".
    std::map<std::string, std::string> headers = {};
};

/// The six volumes of a usage report, in bytes.
struct ReportFigures {
    std::uint64_t usedDownload = 0;
    std::uint64_t usedUpload = 0;
    std::uint64_t graceDownload = 0;
    std::uint64_t graceUpload = 0;
    std::uint64_t totalDownload = 0;
    std::uint64_t totalUpload = 0;
};

/// The report in the provider's format.
std::string reportBody(ReportFigures const& figures);

/// The reply to the lookup of the key for the requesting connection.
std::string lookupBody(std::string_view key);

/// A key of the demonstration, and a sentence on what it shows.
struct DemoKey {
    std::string_view key;
    std::string_view shows;
    Reply reply;
};

/// The key whose usage pages have a failure notice.
constexpr std::string_view noticeKey = "demonotice";

/// The keys that the provider knows from the start, sorted.
std::map<std::string, DemoKey, std::less<>> const& demoKeys();

}
