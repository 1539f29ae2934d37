// SPDX-License-Identifier: MIT
#include "demo/Pages.h"

#include "demo/Reply.h"

#include <array>
#include <iomanip>
#include <sstream>
#include <string_view>

namespace demo {

namespace {

constexpr std::string_view head = R"(<!DOCTYPE html>
<html lang="en">
<head>
<meta charset="utf-8">
<title>Tarvo Internet - Usage</title>
<link rel="stylesheet" href="/support/site.css">
<script>window.siteReady = true;</script>
</head>
<body>
<div class="header-top-bar-container"><a href="https://status.tarvo.example/">Network status</a></div>
<div id="headerMountPoint">
<nav><ul>
<li><a href="https://www.tarvo.example/">Home</a></li>
<li><a href="https://www.tarvo.example/plans">Plans</a></li>
<li><a href="/support/usage/api">Usage keys</a></li>
<li><a href="https://community.tarvo.example/">Community</a></li>
</ul></nav>
</div>
<grid-container>
)";

constexpr std::string_view foot = R"(</grid-container>
<footer>
<p>Tarvo Internet &middot; <a href="https://www.tarvo.example/contact">Contact us</a> &middot;
<a href="https://www.tarvo.example/privacy">Privacy</a></p>
</footer>
<script>document.body.dataset.loaded = 'yes';</script>
</body>
</html>
)";

constexpr std::array<std::string_view, 12> monthNames { "January", "February", "March", "April", "May", "June", "July",
    "August", "September", "October", "November", "December" };

std::string page(std::string const& content) { return std::string { head } + content + std::string { foot }; }

std::string gigabytes(unsigned tenths)
{
    return std::to_string(tenths / 10) + "." + std::to_string(tenths % 10) + " GB";
}

// A day always shows the same volumes, so that two visits agree.
std::string dayRow(std::chrono::year_month_day date)
{
    auto const day = static_cast<unsigned>(date.day());
    unsigned const seed = day * 37 + static_cast<unsigned>(date.month()) * 101;
    unsigned const download = 6 + seed % 31;
    unsigned const upload = 1 + seed % 4;

    std::ostringstream row;
    row << "<tr><td>" << static_cast<int>(date.year()) << '-' << std::setfill('0') << std::setw(2)
        << static_cast<unsigned>(date.month()) << '-' << std::setw(2) << day << "</td><td>" << gigabytes(download)
        << "</td><td>" << gigabytes(upload) << "</td><td>" << gigabytes(download + upload) << "</td></tr>\n";
    return row.str();
}

std::string dayTable(std::chrono::year_month month, std::chrono::year_month_day today)
{
    std::string table = "<table>\n<tr><td>Day</td><td>Download</td><td>Upload</td><td>Total</td></tr>\n";
    std::chrono::year_month_day const monthEnd = month / std::chrono::last;
    auto const lastDay = std::min(monthEnd, today).day();
    for (std::chrono::day day { 1 }; day <= lastDay; ++day)
        table += dayRow(month / day);
    return table + "</table>\n";
}

std::string monthTitle(std::chrono::year_month month)
{
    auto const index = static_cast<unsigned>(month.month()) - 1;
    return std::string { monthNames.at(index) } + " " + std::to_string(static_cast<int>(month.year()));
}

std::string failureNotice()
{
    return "<div class=\"usage-message-failure\"><p>An error occurred: there is no usage for this month.</p></div>\n";
}

}

std::string usagePage(std::chrono::year_month month, std::chrono::year_month_day today)
{
    bool const begun = month / std::chrono::day { 1 } <= today;
    return page("<section class=\"portal-login-section\">\n<h2>Daily usage, " + monthTitle(month)
        + "</h2>\n<div class=\"usage-message-content\">\n<div class=\"listing\">\n<ul>\n"
          "<li>Volumes are counted in your local time.</li>\n"
          "<li>Today's volume is provisional. <span class=\"link\">"
          "<a href=\"https://www.tarvo.example/support/counting\">How we count</a></span></li>\n</ul>\n</div>\n</div>\n"
        + (begun ? dayTable(month, today) : failureNotice()) + "</section>\n");
}

std::string helpPage()
{
    std::string content = "<h2>Your usage key</h2>\n<p>This provider is a stand-in for demonstrations. Add any of "
                          "these keys to see what it shows.</p>\n<table>\n";
    for (auto const& [name, key] : demoKeys())
        content += "<tr><td><code>" + name + "</code></td><td>" + std::string { key.shows } + "</td></tr>\n";
    return page(content + "</table>\n");
}

std::string notFoundPage() { return page("<h2>Page not found</h2>\n<p>There is no page under this address.</p>\n"); }

}
