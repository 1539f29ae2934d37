// SPDX-License-Identifier: MIT
#include "demo/Reply.h"

#include <initializer_list>

namespace demo {

namespace {

constexpr std::string_view declaration = "<?xml version=\"1.0\" encoding=\"utf-8\"?>\n";

std::string group(std::string const& name, std::uint64_t download, std::uint64_t upload)
{
    return "  <" + name + ">\n    <download>" + std::to_string(download) + "</download>\n    <upload>"
        + std::to_string(upload) + "</upload>\n  </" + name + ">\n";
}

// Makes a report whose totals are the sums of their parts.
std::string report(
    std::uint64_t usedDownload, std::uint64_t usedUpload, std::uint64_t freeDownload = 0, std::uint64_t freeUpload = 0)
{
    return reportBody(
        { usedDownload, usedUpload, freeDownload, freeUpload, usedDownload + freeDownload, usedUpload + freeUpload });
}

std::map<std::string, DemoKey, std::less<>> makeDemoKeys()
{
    std::string const home = report(52'345'678'901, 3'456'789'012, 1'200'000'000, 300'000'000);
    std::string const errorPage = "<!DOCTYPE html>\n<html><head><title>Service unavailable</title></head>"
                                  "<body><h1>Service unavailable<br></h1><p>Back soon.</body></html>\n";
    std::string const notUtf8 = std::string { declaration } + "<usage><plan>Caf\xe9</plan></usage>\n";
    std::string const noFigures = std::string { declaration } + "<usage>\n</usage>\n";

    std::map<std::string, DemoKey, std::less<>> keys;
    for (DemoKey const& key : std::initializer_list<DemoKey> {
             { "demohome", "An ordinary month: 57.3 GB.", { home } },
             { "democottage", "A light month.", { report(4'812'000'000, 391'000'000) } },
             { "demoover", "More than a cap of 100 GB.", { report(118'230'000'000, 9'410'000'000) } },
             { "demoterabytes", "Terabytes.", { report(2'734'000'000'000, 812'000'000'000) } },
             { "demoslow", "An answer that takes some seconds.", { home, Manner::Slowly } },
             { "demosilent", "No answer at all.", { home, Manner::Never } },
             { "democut", "An answer that breaks off half-way.", { home, Manner::CutOff } },
             { "demoerror", "A web page that reports a fault.",
                 { errorPage, Manner::AtOnce, 503, "text/html; charset=utf-8" } },
             { "demolatin", "An answer in another encoding than UTF-8.", { notUtf8 } },
             { noticeKey, "A failure notice on the daily usage page.", { home } },
             { "demoempty", "An answer without a figure.", { noFigures } },
         })
        keys.emplace(key.key, key);
    return keys;
}

}

std::string reportBody(ReportFigures const& figures)
{
    return std::string { declaration } + "<usage>\n" + group("used", figures.usedDownload, figures.usedUpload)
        + group("grace", figures.graceDownload, figures.graceUpload)
        + group("total", figures.totalDownload, figures.totalUpload) + "</usage>\n";
}

std::string lookupBody(std::string_view key)
{
    return std::string { declaration } + "<lookup>\n  <status>ok</status>\n  <key>" + std::string { key }
    + "</key>\n</lookup>\n";
}

std::map<std::string, DemoKey, std::less<>> const& demoKeys()
{
    static std::map<std::string, DemoKey, std::less<>> const keys = makeDemoKeys();
    return keys;
}

}
