// SPDX-License-Identifier: MIT
#include "platform/PropertyList.h"
#include "platform/XmlParser.h"

#include <gtest/gtest.h>

#include <limits>

using namespace std::chrono_literals;
using namespace std::string_literals;
using platform::Array;
using platform::Date;
using platform::Dictionary;
using platform::readPropertyList;

namespace {

std::string repeated(int count, std::string const& before, std::string const& behind)
{
    std::string text;
    for (int i = 0; i < count; ++i)
        text += before + std::to_string(i) + behind;
    return text;
}

std::string nested(std::string const& element, int depth)
{
    return depth == 0 ? "" : "<" + element + ">" + nested(element, depth - 1) + "</" + element + ">";
}

std::string inDictionary(std::string const& element)
{
    return "<plist><dict><key>k</key>" + element + "</dict></plist>";
}

}

TEST(XmlParser, WhatHasNoEndOrLeadsElsewhereIsRefused)
{
    std::string const type = "<!DOCTYPE a SYSTEM 'http://127.0.0.1:9/a.dtd'>";
    auto const declared
        = [](int count) { return "<!DOCTYPE a [" + repeated(count, "<!ATTLIST a a", " CDATA #IMPLIED>") + "]><a/>"; };
    std::vector<std::pair<std::string, bool>> const cases { { "<a" + repeated(1'000, " a", "=''") + "/>", true },
        { "<a" + repeated(100'000, " a", "=''") + "/>", false },
        { "<a>" + repeated(100'000, "<a", "/>") + "</a>", false }, { repeated(100'000, "<?a", " ?>") + "<a/>", false },
        { nested("a", 256), true }, { nested("a", 257), false }, { declared(1'024), true }, { declared(1'025), false },
        { "<!DOCTYPE a [<!ATTLIST a a CDATA ''>]><b/>", true }, { "<!DOCTYPE a [<!ATTLIST a a CDATA ''>]><a/>", false },
        { "<!DOCTYPE a [<!ENTITY e 'x'>]><a>&e;</a>", false }, { "<!DOCTYPE a [%p;]><a/>", false },
        { type + "<a>&e;</a>", false }, { type + "<a b='&#9;&e;'/>", false }, { type + "<a b='&#9;'/>", true },
        { "<?xml version='1.0' encoding='x-other'?><a/>", true }, { std::string("\xFF\xFE<\0a\0/\0>\0", 10), false } };
    platform::XmlParserDelegate ignored;
    for (auto const& [document, isRead] : cases)
        EXPECT_EQ(platform::parseXml(document, ignored), isRead) << document.substr(0, 60);
}

TEST(PropertyList, WhatIsWrittenIsReadBack)
{
    Date const summer { std::chrono::sys_days(2026y / 7 / 1) + 12h + 5min + 9s };
    platform::Value const lasting = Dictionary { { "", " " }, { "<&>'\"", "a\r\nb\rc\n\t é € 𝄞" },
        { "numbers", Array { 0, -1, std::numeric_limits<std::int64_t>::min(), 0.1, -1e300, 5e-324, 57.3 } },
        { "dates", Array { summer, Date {}, Date(std::chrono::sys_days(1901y / 1 / 1) + 1s) } },
        { "nested",
            Dictionary { { "empty", Dictionary {} }, { "none", Array {} }, { "yes", true }, { "no", false } } } };
    std::vector<std::pair<platform::Value, platform::Value>> const cases { { lasting, lasting },
        { "\x1B caf\xE9! \xED\xA0\x80 \xEF\xBF\xBF\0"s, "\uFFFD caf\uFFFD! \uFFFD\uFFFD\uFFFD \uFFFD\uFFFD" },
        { summer + 999ms, summer }, { std::numeric_limits<double>::infinity(), 0.0 } };
    for (auto const& [written, read] : cases)
        EXPECT_EQ(readPropertyList(platform::writePropertyList({ { "k", written } })), (Dictionary { { "k", read } }));
}

TEST(PropertyList, ReadsWhatOtherToolsWrite)
{
    std::vector<std::pair<std::string, platform::Value>> const cases { { "<integer> -42\n</integer>", -42 },
        { "<string> R&amp;D\n&#233;<!-- --> <![CDATA[<raw> & ]]>end</string>", " R&D\né <raw> & end" },
        { "<real>1e3</real>", 1000.0 }, { "<array> <true/> <dict/> </array>", Array { true, Dictionary {} } },
        { "<date>2024-02-29T23:59:59Z</date>", Date(std::chrono::sys_days(2024y / 3 / 1) - 1s) },
        { "<string>first</string><key>k</key><string>last wins</string>", "last wins" } };
    for (auto const& [element, value] : cases)
        EXPECT_EQ(readPropertyList(inDictionary(element)), (Dictionary { { "k", value } })) << element;
}

TEST(PropertyList, RefusesWhatIsNotWhollyAPropertyList)
{
    EXPECT_TRUE(readPropertyList(inDictionary(nested("array", 63))));
    std::vector<std::string> documents { "bplist00", "<dict/>", "<plist/>", "<plist>text</plist>",
        "<plist><array/></plist>", "<plist><dict/><dict/></plist>", "<plist><dict><string/></dict></plist>",
        "<plist><dict/></plist>more" };
    for (std::string const& element :
        { nested("array", 64), ""s, "text"s, "<key>l</key>"s, "<data>AAAA</data>"s, "<string><true/></string>"s,
            "<string/>text"s, "<string/><string/>"s, "<array><key>l</key></array>"s, "<true>x</true>"s, "<integer/>"s,
            "<integer>1.5</integer>"s, "<integer>9223372036854775808</integer>"s, "<real>1e999</real>"s,
            "<real>inf</real>"s, "<date>2026-02-30T12:00:00Z</date>"s, "<date>2026-02-03T24:00:00Z</date>"s,
            "<date>2026-02-03T12:00:-1Z</date>"s, "<date>9999-01-01T00:00:00Z</date>"s })
        documents.push_back(inDictionary(element));
    std::string const whole = platform::writePropertyList({ { "a", "é" }, { "b", Array { 1, true } } });
    for (std::size_t length = 0; length < whole.size() - 1; ++length)
        documents.push_back(whole.substr(0, length));
    for (std::string const& document : documents)
        EXPECT_FALSE(readPropertyList(document)) << document;
}
