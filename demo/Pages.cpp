// SPDX-License-Identifier: MIT
#include "demo/Pages.h"

#include "demo/Reply.h"

#include <algorithm>
#include <array>
#include <iomanip>
#include <sstream>
#include <string_view>

namespace demo {

namespace {

constexpr std::string_view style = R"(* { box-sizing: border-box; }
body { margin: 0; background: #eef2f5; color: #1f2d38; font: 15px/1.5 "Noto Sans", system-ui, sans-serif; }
a { color: inherit; }
grid-container { display: block; }
h2 { margin: 0 0 16px; font-size: 24px; line-height: 1.25; }
.site-header { background: #0b5f6f; color: white; }
.site-header .header-top-bar-container { padding: 6px 32px; background: #084754; font-size: 13px; text-align: right; }
.site-header nav { display: flex; align-items: center; gap: 28px; padding: 14px 32px; }
.site-header a, main > footer a { text-decoration: none; }
.brand { display: flex; align-items: center; gap: 10px; margin-right: auto; font-size: 20px; font-weight: bold; }
main > .content { max-width: 820px; margin: 32px auto; padding: 28px 32px; border-radius: 8px; background: white;
  box-shadow: 0 1px 4px rgba(31, 45, 56, 0.2); }
main > footer { padding: 24px; color: #5a6b78; font-size: 13px; text-align: center; }
.portal-login-section { padding: 0 20px 24px; }
main .portal-login-section { padding: 0; }
.portal-login-section .header-top-bar-container, .portal-login-section footer { color: #5a6b78; font-size: 13px; }
#headerMountPoint { display: flex; gap: 24px; margin: 8px 0 24px; border-bottom: 1px solid #d5dde3; }
#headerMountPoint a { padding: 6px 0; color: #5a6b78; text-decoration: none; }
#headerMountPoint a:first-child { border-bottom: 3px solid #0b5f6f; color: #0b5f6f; font-weight: bold; }
.listing { padding: 12px 16px; border: 1px solid #d5dde3; border-radius: 6px; }
ul { margin: 0 0 0 18px; padding: 0; }
.usage-message-failure { margin-top: 16px; padding: 1px 16px; border-left: 4px solid #c62828; border-radius: 4px;
  background: rgba(198, 40, 40, 0.12); }
table { width: 100%; margin: 20px 0 12px; border-spacing: 0; border-radius: 4px; font-variant-numeric: tabular-nums; }
th, td { padding: 6px 12px; border-top: 1px solid rgba(128, 140, 150, 0.25); text-align: right; white-space: nowrap; }
th:first-child, td:first-child { text-align: left; }
tr:first-child > * { border-top: 0; }
main tr:first-child { background: #eef2f5; }
.more { display: flex; flex-wrap: wrap; justify-content: center; gap: 8px 24px; margin: 20px 0; font-size: 14px; }
dl { display: grid; grid-template-columns: max-content 1fr; gap: 8px 24px; }
dt { font-weight: bold; }
dd { margin: 0; }
)";

constexpr std::string_view head = R"(<!DOCTYPE html>
<html lang="en">
<head>
<meta charset="utf-8">
<meta name="viewport" content="width=device-width">
<title>Tarvo Internet</title>
<link rel="stylesheet" href="/support/site.css">
<link rel="icon" href="data:,">
<script>window.site = { name: 'Tarvo Internet', language: 'en' };</script>
</head>
<body>
<header class="site-header">
<div class="header-top-bar-container"><a href="https://status.tarvo.example/">Network status</a></div>
<nav>
<span class="brand"><svg width="28" height="28" viewBox="0 0 28 28" fill="none" stroke="white" stroke-width="3">
<circle cx="14" cy="14" r="12"/><path d="M8 18v-3M14 18v-9M20 18v-6"/></svg>Tarvo Internet</span>
<a href="https://www.tarvo.example/">Home</a>
<a href="https://www.tarvo.example/plans">Plans</a>
<a href="/support/usage/api">Usage keys</a>
<a href="https://community.tarvo.example/">Community</a>
</nav>
</header>
<main>
<div class="content">
)";

constexpr std::string_view foot = R"(</div>
<footer><a href="https://www.tarvo.example/contact">Contact us</a> &middot;
<a href="https://www.tarvo.example/privacy">Privacy</a> &middot; &copy; Tarvo Internet</footer>
</main>
<script>document.title = document.querySelector('h2').textContent + ' - ' + site.name;</script>
</body>
</html>
)";

// The usage section has its own heading and footer, because the site shows it in several places.
constexpr std::string_view sectionHead = R"(<section class="portal-login-section">
<div class="header-top-bar-container"><a href="https://www.tarvo.example/account">My account</a> / Usage</div>
<div id="headerMountPoint"></div>
<script>
document.getElementById('headerMountPoint').innerHTML = ['Usage', 'Invoices', 'Equipment']
  .map((name) => `<a href="https://www.tarvo.example/account/${name.toLowerCase()}">${name}</a>`).join('');
</script>
<grid-container>
)";

constexpr std::string_view advice = R"(<div class="usage-message-content"><div class="listing"><ul>
<li>A day runs from midnight to midnight in your local time.</li>
<li>One gigabyte is 1,000,000,000 bytes. <span class="link"><a href="/support/usage/api">Usage keys</a></span></li>
<li>Today's volume is provisional.</li>
</ul></div></div>
)";

constexpr std::string_view sectionFoot = R"(</grid-container>
<footer>Volumes are for information; your invoice decides.</footer>
</section>
)";

constexpr std::string_view notice
    = "<div class=\"usage-message-failure\"><p>An error occurred: the usage of this month is not complete.</p></div>\n";

constexpr std::array<std::string_view, 12> monthNames { "January", "February", "March", "April", "May", "June", "July",
    "August", "September", "October", "November", "December" };

std::string page(std::string const& content) { return std::string { head } + content + std::string { foot }; }

std::string gigabytes(unsigned tenths)
{
    return std::to_string(tenths / 10) + "." + std::to_string(tenths % 10) + " GB";
}

// A day always has the same volumes, so that two visits agree.
std::string dayRow(std::chrono::year_month_day date)
{
    auto const day = static_cast<unsigned>(date.day());
    unsigned const seed = day * day * 37 + static_cast<unsigned>(date.month()) * 101;
    unsigned const download = 6 + seed % 31;
    unsigned const upload = 1 + seed / 7 % 4;

    std::ostringstream row;
    row << "<tr><td>" << static_cast<int>(date.year()) << '-' << std::setfill('0') << std::setw(2)
        << static_cast<unsigned>(date.month()) << '-' << std::setw(2) << day << "</td><td>" << gigabytes(download)
        << "</td><td>" << gigabytes(upload) << "</td><td>" << gigabytes(download + upload) << "</td></tr>\n";
    return row.str();
}

std::string dayTable(std::chrono::year_month month, std::chrono::year_month_day today)
{
    std::string table = "<table>\n<tr><th>Day</th><th>Download</th><th>Upload</th><th>Total</th></tr>\n";
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

// Some links stay on the provider's host, but most lead elsewhere.
std::string furtherLinks(std::string const& host)
{
    return "<p class=\"more\"><a href=\"/support/usage/api\">Your usage key</a>\n<a href=\"https://www." + host
        + "/support/counting\">How usage is counted</a>\n<a href=\"http://speed.tarvo.example/\">Speed test</a>\n"
          "<a href=\"https://community.tarvo.example/\" target=\"_blank\">Community</a></p>\n";
}

}

std::string usagePage(
    std::string const& host, std::string_view key, std::chrono::year_month month, std::chrono::year_month_day today)
{
    bool const begun = month / std::chrono::day { 1 } <= today;
    std::string content { sectionHead };
    content += "<h2>Daily usage, " + monthTitle(month) + "</h2>\n";
    content += advice;
    if (!begun || key == noticeKey)
        content += notice;
    if (begun)
        content += dayTable(month, today);
    return page(content + furtherLinks(host) + std::string { sectionFoot });
}

std::string helpPage()
{
    std::string content = "<h2>Your usage key</h2>\n<p>This provider is a stand-in for demonstrations. Add any of "
                          "these keys to see what it shows.</p>\n<dl>\n";
    for (auto const& [name, key] : demoKeys())
        content += "<dt><code>" + name + "</code></dt><dd>" + std::string { key.shows } + "</dd>\n";
    return page(content + "</dl>\n");
}

std::string notFoundPage() { return page("<h2>Page not found</h2>\n<p>There is no page under this address.</p>\n"); }

std::string siteStyle() { return std::string { style }; }

}
