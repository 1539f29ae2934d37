// SPDX-License-Identifier: MIT
#include "services/UsageData.h"

#include "platform/UrlLoader.h"

#include <gtest/gtest.h>

using platform::Dictionary;

namespace {

struct OneReply final : platform::UrlLoader {
    std::optional<std::string> load(std::string const& url) override
    {
        EXPECT_EQ(url, "https://tarvo.example:8443/account/usage/api?key=a b%ü");
        return body;
    }
    std::string body;
};

std::optional<Dictionary> figuresOf(std::string const& body)
{
    OneReply loader;
    loader.body = body;
    return UsageData(loader, ProviderAddresses("tarvo.example:8443")).updateUsage("a b%ü");
}

}

TEST(UsageData, CollectsTheFiguresAsTheyStandByTheGroupOpenedLast)
{
    // What a group's figure is, and what is none.
    std::vector<std::pair<char const*, Dictionary>> const cases {
        { "<a><used><x><download>1</download></x></used></a>", { { "used:download", "1" } } },
        { "\r\n\n  <a>\n<used>\n<download>\n\t52345678901\n</download><upload> 1.5E9 </upload></used>\n</a>\n\n",
            { { "used:download", "52345678901" }, { "used:upload", "1.5E9" } } },
        { "<a><grace><download>n/a</download><upload/></grace></a>",
            { { "grace:download", "n/a" }, { "grace:upload", "" } } },
        { "<a><plan>9</plan><used><upload>2</upload></used></a>", { { "used:upload", "2" } } },
        { "<a><used/><upload>2</upload></a>", { { "used:upload", "2" } } },
        { "<a><download>1</download><used><upload>2</upload></used></a>", { { "used:upload", "2" } } },
        { "<a><used><upload>1</upload></used><used><upload>2</upload></used></a>", { { "used:upload", "2" } } },
        { "<a><Used><download>1</download></Used><used><DOWNLOAD>2</DOWNLOAD></used></a>", {} },
        { "<a xmlns:n='u'><n:used><download>1</download></n:used></a>", {} },
        { "<a><used>3<download>1</download></used></a>", { { "used:download", "31" } } },
        { "<a><used><download>1<![CDATA[9]]>2</download></used></a>", { { "used:download", "12" } } },
        { "<a><used><download>&#49;&amp;2</download></used></a>", { { "used:download", "1&2" } } },
        { "<html><body/></html>", {} },
    };
    for (auto const& [body, figures] : cases)
        EXPECT_EQ(figuresOf(body), figures) << body;
}

TEST(UsageData, TakesNoReplyOfUnreasonableSizeWhateverStandsAroundIt)
{
    std::string const report = "<a><used><upload>2</upload></used></a>";
    std::string const megabytes(2'000'000, ' ');
    EXPECT_EQ(figuresOf(megabytes + report + megabytes), (Dictionary { { "used:upload", "2" } }));
    EXPECT_EQ(figuresOf("<b>" + megabytes + report + "</b>"), std::nullopt);
}
