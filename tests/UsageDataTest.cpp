// SPDX-License-Identifier: MIT
#include "services/UsageData.h"

#include "platform/UrlLoader.h"
#include "services/ReplyText.h"

#include <gtest/gtest.h>

using platform::Dictionary;

namespace {

struct OneReply final : platform::UrlLoader {
    std::optional<std::string> load(std::string const& url) override
    {
        EXPECT_EQ(url, "https://tarvo.example:8443/account/usage/api?key=a b%ü");
        return body;
    }
    std::optional<std::string> body;
};

std::optional<Dictionary> figuresOf(std::optional<std::string> const& body)
{
    OneReply loader;
    loader.body = body;
    return UsageData(loader, ProviderAddresses("tarvo.example:8443")).updateUsage("a b%ü");
}

}

TEST(UsageData, CollectsTheFiguresAsTheyStandByTheGroupOpenedLast)
{
    EXPECT_EQ(figuresOf("\r\n\n  <?xml version=\"1.0\"?>\n<usage>\n"
                        "  <used>\n    <download>52345678901</download>\n    <upload> 1.5E9 </upload>\n  </used>\n"
                        "  <grace><download>n/a</download><upload/></grace>\n"
                        "  <total><download>\n\t53545678901\n</download><upload>0</upload></total>\n</usage>\n\n"),
        (Dictionary { { "used:download", "52345678901" }, { "used:upload", "1.5E9" }, { "grace:download", "n/a" },
            { "grace:upload", "" }, { "total:download", "53545678901" }, { "total:upload", "0" } }));
    // What a group's figure is, and what is none.
    std::pair<char const*, Dictionary> const cases[] {
        { "<a><used><x><download>1</download></x></used></a>", { { "used:download", "1" } } },
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

TEST(UsageData, HasNothingWithoutAWellFormedReply)
{
    for (char const* const body : { "", "  \n", "nothing", "<a><used><download>1</download></used>", "<p>a<br></p>",
             "<!DOCTYPE a [<!ENTITY e '1'>]><a><used><download>&e;</download></used></a>" })
        EXPECT_EQ(figuresOf(body), std::nullopt) << body;
    EXPECT_EQ(figuresOf(std::nullopt), std::nullopt);
}

TEST(ReplyText, LosesLineBreaksFirstAndThenSpaces)
{
    EXPECT_EQ(trimmedReply("\n\xE2\x80\xA8 \t\xC2\xA0x y\xE3\x80\x80\n"), "x y");
    EXPECT_EQ(trimmedReply(" \nx\n "), "\nx\n");
    EXPECT_EQ(trimmedText(" \n\tx\xC2\x85 "), "x");
    EXPECT_EQ(trimmedText("\xC2\xA0"), "");
}
