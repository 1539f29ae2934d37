// SPDX-License-Identifier: MIT
#include "platform/XmlParser.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

// Writes events in short: <name, >name, text in brackets, CDATA in braces, ! for the error.
class Recorder final : public platform::XmlParserDelegate {
public:
    std::string seen;

    void didStartElement(std::string_view name) override { seen.append("<").append(name); }
    void didEndElement(std::string_view name) override { seen.append(">").append(name); }
    void foundCharacters(std::string_view text) override { seen.append("[").append(text).append("]"); }
    void foundCData(std::string_view block) override { seen.append("{").append(block).append("}"); }
    void parseErrorOccurred() override { seen += '!'; }
};

void expectEvents(std::vector<std::pair<std::string, std::string>> const& cases)
{
    for (auto const& [document, events] : cases) {
        Recorder recorder;
        EXPECT_EQ(platform::parseXml(document, recorder), !events.ends_with('!')) << document;
        EXPECT_EQ(recorder.seen, events) << document;
    }
}

}

TEST(XmlParser, TextIsCutAtMarkupAndAroundReferencesOnly)
{
    // The library cuts plain text after 300 bytes, in the middle of a word and of a character.
    std::string accents;
    for (int i = 0; i < 4000; ++i)
        accents += "dépassés\n";
    expectEvents({
        { "<a>R&amp;D caf\u00E9</a>", "<a[R][&][D caf\u00E9]>a" },
        { "<a>&lt;&gt;;amp;x]y]]z</a>", "<a[<][>][;amp;x]y]]z]>a" },
        { "<a>" + accents + "&#233;&#x20;" + accents + "&quot;</a>",
            "<a[" + accents + "][é][ ][" + accents + "][\"]>a" },
        { "<a b='&amp;'>1\r\n2\r3</a>", "<a[1\n2\n3]>a" },
        { "<a>1<!-- & -->caf\u00E9<?p & ?>th\u00E9</a>", "<a[1][caf\u00E9][th\u00E9]>a" },
        { "<a>1<![CDATA[&amp;<]]>th\u00E9<![CDATA[]]>3</a>", "<a[1]{&amp;<}[th\u00E9]{}[3]>a" },
        { "<x:a xmlns:x='u'> <y:b:c/>\n</x:a>", "<x:a[ ]<y:b:c>y:b:c[\n]>x:a" },
        { "\xEF\xBB\xBF<?xml version='1.0' encoding='ISO-8859-1'?><a>é</a>", "<a[é]>a" },
        { "<!DOCTYPE a PUBLIC '-//X//EN' 'http://127.0.0.1:9/a.dtd'><a>x</a>", "<a[x]>a" },
    });
}

TEST(XmlParser, WhatIsNotWellFormedOrHasEntitiesOfItsOwnEndsInOneErrorAndNothingOnStderr)
{
    testing::internal::CaptureStderr();
    expectEvents({ { "", "!" }, { "<a>cut off", "<a[cut off]!" }, { "<a>1<b></a>2", "<a[1]<b!" },
        { "<a/><b/>", "<a>a!" }, { "<a>\xE9</a>", "<a!" }, { "<a>x\x01y</a>", "<a[x]!" },
        { "<a>1&eacute;2</a>", "<a[1]!" }, { std::string("\xFF\xFE<\0a\0/\0>\0", 10), "!" },
        { "<!DOCTYPE a [<!ENTITY e 'x'>]><a>1&e;2</a>", "!" },
        { "<!DOCTYPE a [<!ENTITY e SYSTEM 'file:///etc/passwd'>]><a>&e;</a>", "!" }, { "<!DOCTYPE a [%p;]><a/>", "!" },
        { "<!DOCTYPE a SYSTEM 'http://127.0.0.1:9/a.dtd'><a>1&e;2</a>", "<a[1]!" },
        { "<!DOCTYPE a SYSTEM 'http://127.0.0.1:9/a.dtd'><a><b c='&e;'/></a>", "<a!" } });
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
}

TEST(XmlParser, RefusesNamesLevelsAndDeclarationsWithoutEndBeforeTheyTakeTime)
{
    auto const repeated = [](int count, char const* before, char const* behind) {
        std::string text;
        for (int i = 0; i < count; ++i)
            text.append(before).append(std::to_string(i)).append(behind);
        return text;
    };
    auto const levels = [](int count) {
        std::string text;
        for (int i = 0; i < count; ++i)
            text = "<a>" + text + "</a>";
        return text;
    };
    auto const declared = [&repeated](int count, char const* value) {
        return "<!DOCTYPE a [<!ATTLIST a" + repeated(count, " a", value) + ">]>";
    };
    platform::XmlParserDelegate ignored;
    EXPECT_TRUE(platform::parseXml("<a" + repeated(1'000, " a", "=''") + "/>", ignored));
    EXPECT_FALSE(platform::parseXml("<a" + repeated(100'000, " a", "=''") + "/>", ignored));
    EXPECT_TRUE(platform::parseXml("<a>" + repeated(1'000, "<a", "/>") + "</a>", ignored));
    EXPECT_FALSE(platform::parseXml("<a>" + repeated(100'000, "<a", "/>") + "</a>", ignored));
    EXPECT_FALSE(platform::parseXml(repeated(100'000, "<?a", " ?>") + "<a/>", ignored));
    EXPECT_TRUE(platform::parseXml(levels(256), ignored));
    EXPECT_FALSE(platform::parseXml(levels(257), ignored));
    EXPECT_TRUE(platform::parseXml(declared(1'000, " CDATA #IMPLIED") + "<a/>", ignored));
    EXPECT_FALSE(platform::parseXml(declared(2'000, " CDATA #IMPLIED") + "<a/>", ignored));
    EXPECT_TRUE(platform::parseXml(declared(1, " CDATA ''") + "<b/>", ignored));
    EXPECT_FALSE(platform::parseXml(declared(1, " CDATA ''") + "<a/>", ignored));
}
