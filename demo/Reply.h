// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <string_view>

namespace demo {

/// How an answer comes: at once, after some seconds, not at all, or with half of the body missing.
enum class Manner { AtOnce, Slowly, Never, CutOff };

/// What one usage key or one page is answered.
struct Reply {
    std::string body = {};
    Manner manner = Manner::AtOnce;
    int status = 200;
    /// XML for a usage key and HTML for a page, when empty.
    std::string contentType = {};
    /// Further headers, such as "Location".
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

/// The report as the provider writes it.
std::string reportBody(ReportFigures const& figures);

/// The answer to the question which key belongs to the asker's own connection.
std::string lookupBody(std::string_view key);

/// A key of the demonstration, with a sentence on what it is there to show.
struct DemoKey {
    std::string_view key;
    std::string_view shows;
    Reply reply;
};

/// The key whose connection has a failure notice on its usage pages.
constexpr std::string_view noticeKey = "demonotice";

/// The keys that the provider knows from the start, by key.
std::map<std::string, DemoKey, std::less<>> const& demoKeys();

}
