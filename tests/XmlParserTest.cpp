// SPDX-License-Identifier: MIT
#include "platform/XmlParser.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

// Writes events in short: <name, >name, text in brackets, CDATA in braces, ! for the error.
struct Recorder final : platform::XmlParserDelegate {
    void didStartElement(std::string_view name) override { seen.append("<").append(name); }
    void didEndElement(std::string_view name) override { seen.append(">").append(name); }
    void foundCharacters(std::string_view text) override { seen.append("[").append(text).append("]"); }
    void foundCData(std::string_view block) override { seen.append("{").append(block).append("}"); }
    void parseErrorOccurred() override { seen += '!'; }

    std::string seen;
};

std::string repeated(int count, std::string const& before, std::string const& behind)
{
    std::string text;
    for (int i = 0; i < count; ++i)
        text += before + std::to_string(i) + behind;
    return text;
}

std::string levels(int count) { return count == 0 ? "" : "<a>" + levels(count - 1) + "</a>"; }

}

TEST(XmlParser, TextIsCutAtMarkupAndReferencesOnlyAndWhatIsNotWellFormedEndsInOneError)
{
    // The library cuts plain text after 300 bytes, in the middle of a word and of a character.
    auto const accents = repeated(1000, "dépassés", "\n");
    std::string const type = "<!DOCTYPE a SYSTEM 'http://127.0.0.1:9/a.dtd'>";
    std::vector<std::pair<std::string, std::string>> const cases { { "<a>&lt;;amp;x]y]]z</a>", "<a[<][;amp;x]y]]z]>a" },
        { "<a>" + accents + "&#233;&#x20;" + accents + "</a>", "<a[" + accents + "][é][ ][" + accents + "]>a" },
        { "<a b='&#9;&amp;'>1\r\n2\r3</a>", "<a[1\n2\n3]>a" }, { "<a>1<!-- & -->é<?p & ?>è</a>", "<a[1][é][è]>a" },
        { "<a>1<![CDATA[&amp;<]]>è<![CDATA[]]>3</a>", "<a[1]{&amp;<}[è]{}[3]>a" },
        { "\xEF\xBB\xBF<?xml version='1.0' encoding='ISO-8859-1'?><a>é</a>", "<a[é]>a" }, { "", "!" },
        { "<a>cut off", "<a[cut off]!" }, { "<a>1<b></a>2", "<a[1]<b!" }, { "<a/><b/>", "<a>a!" },
        { "<a>1&eacute;2</a>", "<a[1]!" }, { std::string("\xFF\xFE<\0a\0/\0>\0", 10), "!" },
        { "<!DOCTYPE a [<!ENTITY e 'x'>]><a>1&e;2</a>", "!" }, { "<!DOCTYPE a [%p;]><a/>", "!" },
        { type + "<a>1&e;2</a>", "<a[1]!" }, { type + "<a><b c='&#9;&e;'/></a>", "<a!" } };
    for (auto const& [document, events] : cases) {
        Recorder recorder;
        EXPECT_EQ(platform::parseXml(document, recorder), !events.ends_with('!')) << document;
        EXPECT_EQ(recorder.seen, events) << document;
    }
}

TEST(XmlParser, NamesLevelsAndDeclarationsWithoutEndAreRefusedBeforeTheyTakeTime)
{
    auto const declared
        = [](int count) { return "<!DOCTYPE a [" + repeated(count, "<!ATTLIST a a", " CDATA #IMPLIED>") + "]><a/>"; };
    std::vector<std::pair<std::string, bool>> const cases { { "<a" + repeated(1'000, " a", "=''") + "/>", true },
        { "<a" + repeated(100'000, " a", "=''") + "/>", false },
        { "<a>" + repeated(100'000, "<a", "/>") + "</a>", false }, { repeated(100'000, "<?a", " ?>") + "<a/>", false },
        { levels(256), true }, { levels(257), false }, { declared(1'024), true }, { declared(1'025), false },
        { "<!DOCTYPE a [<!ATTLIST a a CDATA ''>]><b/>", true },
        { "<!DOCTYPE a [<!ATTLIST a a CDATA ''>]><a/>", false } };
    platform::XmlParserDelegate ignored;
    for (auto const& [document, isRead] : cases)
        EXPECT_EQ(platform::parseXml(document, ignored), isRead) << document.substr(0, 60);
}
