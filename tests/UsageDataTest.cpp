// SPDX-License-Identifier: MIT
#include "services/UsageData.h"

#include "tests/support/ControllerTest.h"

TEST(UsageData, CollectsTheFiguresAsTheyStandByTheGroupOpenedLast)
{
    std::string const report = "<a><used><upload>2</upload></used></a>", megabytes(2'000'000, ' ');
    std::vector<std::pair<std::string, std::optional<platform::Dictionary>>> const cases {
        { "<a><used><x><download>1</download></x></used></a>", { { { "used:download", "1" } } } },
        { "\r\n\n <a>\n<total>\n<download>\n\t52345678901\n</download><upload> 1.5E9 </upload></total>\n</a>\n\n",
            { { { "total:download", "52345678901" }, { "total:upload", "1.5E9" } } } },
        { "<a><grace><download>n/a</download><upload/></grace></a>",
            { { { "grace:download", "n/a" }, { "grace:upload", "" } } } },
        { "<a><plan>9</plan><used/><upload>2</upload></a>", { { { "used:upload", "2" } } } },
        { "<a><download>1</download><used><upload>1</upload></used><used><upload>2</upload></used></a>",
            { { { "used:upload", "2" } } } },
        { "<a><Used/><download>1</download><used><DOWNLOAD>2</DOWNLOAD></used></a>", platform::Dictionary {} },
        { "<a xmlns:n='u'><n:used><download>1</download></n:used></a>", platform::Dictionary {} },
        { "<a><used>3<download>1<![CDATA[9]]>&#50;</download></used></a>", { { { "used:download", "312" } } } },
        { megabytes + report + megabytes, { { { "used:upload", "2" } } } },
        { "<b>" + megabytes + report + "</b>", std::nullopt },
    };
    ScriptedLoader loader;
    for (auto const& [body, figures] : cases) {
        loader.replies["https://tarvo.example:8443/account/usage/api?key=a b%ü"] = body;
        EXPECT_EQ(UsageData(loader, ProviderAddresses("tarvo.example:8443")).updateUsage("a b%ü"), figures)
            << body.substr(0, 99);
    }
}
