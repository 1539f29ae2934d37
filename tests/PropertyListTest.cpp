// SPDX-License-Identifier: MIT
#include "platform/PropertyList.h"

#include <gtest/gtest.h>

#include <limits>

using namespace std::chrono_literals;
using namespace std::string_literals;
using platform::Array;
using platform::Date;
using platform::Dictionary;

namespace {

Date const summer { std::chrono::sys_days(2026y / 7 / 1) + 12h + 5min + 9s };

std::string inDictionary(std::string const& element)
{
    return "<plist><dict><key>k</key>" + element + "</dict></plist>";
}

std::optional<Dictionary> writtenAndRead(Dictionary const& dictionary)
{
    return platform::readPropertyList(platform::writePropertyList(dictionary));
}

std::string nestedArrays(int depth) { return depth == 0 ? "" : "<array>" + nestedArrays(depth - 1) + "</array>"; }

}

TEST(PropertyList, WhatIsWrittenIsReadBack)
{
    Dictionary const dictionary {
        { "", " " },
        { "<&>'\"", "a\r\nb\rc\n\t é € 𝄞" },
        { "numbers", Array { 0, -1, std::numeric_limits<std::int64_t>::min(), 0.1, -1e300, 5e-324, 57.3 } },
        { "dates", Array { summer, Date {}, Date(std::chrono::sys_days(1901y / 1 / 1) + 1s) } },
        { "nested", Dictionary { { "empty", Dictionary {} }, { "none", Array {} }, { "yes", true }, { "no", false } } },
    };
    EXPECT_EQ(writtenAndRead(dictionary), dictionary);
    // What XML cannot hold is replaced.
    EXPECT_EQ(writtenAndRead({ { "k", std::string("\0\x1B caf\xE9! \xED\xA0\x80 \xEF\xBF\xBF", 16) } }),
        (Dictionary { { "k", "\uFFFD\uFFFD caf\uFFFD! \uFFFD\uFFFD\uFFFD \uFFFD" } }));
    EXPECT_EQ(writtenAndRead({ { "date", summer + 999ms }, { "real", std::numeric_limits<double>::infinity() } }),
        (Dictionary { { "date", summer }, { "real", 0.0 } }));
}

TEST(PropertyList, ReadsWhatOtherToolsWrite)
{
    std::vector<std::pair<std::string, platform::Value>> const cases {
        { "<string> R&amp;D\n&#233;<!-- --> <![CDATA[<raw> & ]]>end</string>", " R&D\né <raw> & end" },
        { "<integer> -42\n</integer>", -42 },
        { "<real>1e3</real>", 1000.0 },
        { "<date>2024-02-29T23:59:59Z</date>", Date(std::chrono::sys_days(2024y / 3 / 1) - 1s) },
        { "<array> <true/> <dict/> </array>", Array { true, Dictionary {} } },
        { "<string>first</string><key>k</key><string>last wins</string>", "last wins" },
    };
    for (auto const& [element, value] : cases)
        EXPECT_EQ(platform::readPropertyList(inDictionary(element)), (Dictionary { { "k", value } })) << element;
}

TEST(PropertyList, RefusesValuesThatCannotBeAndDocumentsOfAnotherShapeOrCutOff)
{
    EXPECT_TRUE(platform::readPropertyList(inDictionary(nestedArrays(63))));
    std::vector<std::string> documents { "bplist00", "<dict/>", "<plist/>", "<plist>text</plist>",
        "<plist><array/></plist>", "<plist><dict/><dict/></plist>", "<plist><plist><dict/></plist></plist>",
        "<plist><dict><string/></dict></plist>", "<plist><dict/></plist>more",
        "<!DOCTYPE plist [<!ENTITY e 'x'>]><plist><dict><key>k</key><string>&e;</string></dict></plist>" };
    for (std::string const& element : { nestedArrays(64), nestedArrays(1000), ""s, "text"s, "<key>l</key>"s,
             "<data>AAAA</data>"s, "<x:string/>"s, "<string><true/></string>"s, "<string/>text"s, "<string/><string/>"s,
             "<array><key>l</key></array>"s, "<true>x</true>"s, "<integer/>"s, "<integer>1.5</integer>"s,
             "<integer>9223372036854775808</integer>"s, "<real>1,5</real>"s, "<real>1e999</real>"s,
             "<date>2026-02-30T12:00:00Z</date>"s, "<date>2026-02-03T25:00:00Z</date>"s,
             "<date>2026-02-03T12:00:-1Z</date>"s, "<date>9999-01-01T00:00:00Z</date>"s })
        documents.push_back(inDictionary(element));
    std::string const whole = platform::writePropertyList({ { "a", "é" }, { "b", Array { 1, true } } });
    for (std::size_t length = 0; length < whole.size() - 1; ++length)
        documents.push_back(whole.substr(0, length));
    for (std::string const& document : documents)
        EXPECT_FALSE(platform::readPropertyList(document)) << document;
}
