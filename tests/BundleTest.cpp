// SPDX-License-Identifier: MIT
#include "platform/Bundle.h"

#include "platform/AtomicFile.h"
#include "platform/PropertyList.h"
#include "tests/support/TemporaryFolder.h"

#include <gtest/gtest.h>

using platform::Bundle;

namespace {

std::filesystem::path const shipped = USAGE_METER_BUNDLE;

platform::Dictionary strings(char const* language)
{
    auto const bytes = platform::readFile(shipped / (std::string(language) + ".lproj") / "Localizable.strings");
    return platform::readPropertyList(bytes.value_or("")).value_or(platform::Dictionary {});
}

}

TEST(Bundle, HasEveryTextInBothLanguagesAndPicksTheFirstItHasOrEnglish)
{
    auto const english = strings("en");
    auto const french = strings("fr");
    EXPECT_GT(english.size(), 40U);
    for (auto const& [key, text] : english)
        EXPECT_TRUE(french.contains(key)) << key;
    EXPECT_EQ(english.size(), french.size());
    // It stands between single quotes in a script.
    for (auto const* const table : { &english, &french })
        EXPECT_EQ(
            platform::entry<std::string>(*table, "DETAILED_USAGE_WARNING")->find_first_of("'\\\n"), std::string::npos);
    EXPECT_EQ(Bundle::open(shipped, { "eo", "fr" })->localizedString("QUIT"), "Quitter");
    EXPECT_EQ(Bundle::open(shipped, { "eo" })->localizedString("QUIT"), "Quit");
}

TEST(Bundle, HasTheFormOfATextThatTheLanguageTakesForACount)
{
    TemporaryFolder folder;
    std::filesystem::copy(shipped, folder.path(), std::filesystem::copy_options::recursive);
    auto const translate = [&](char const* language, platform::Dictionary const& texts) {
        auto const table = folder.path() / (std::string(language) + ".lproj");
        std::filesystem::create_directory(table);
        platform::writeFileAtomically(table / "Localizable.strings", platform::writePropertyList(texts));
        return *Bundle::open(folder.path(), { language });
    };
    auto const polish = translate("pl", { { "H", "godziny" }, { "H_ONE", "godzina" }, { "H_MANY", "godzin" } });
    for (auto const& [count, text] : { std::pair(1, "godzina"), { 3, "godziny" }, { 5, "godzin" }, { 22, "godziny" } })
        EXPECT_EQ(polish.localizedString("H", count), text) << count;
    EXPECT_EQ(translate("ja", { { "H", "時間" } }).localizedString("H", 1), "時間");
    EXPECT_EQ(polish.localizedString("X", 1), "X");
}

TEST(Bundle, OpensOnlyUnderANameThatAFolderCanHave)
{
    TemporaryFolder folder;
    EXPECT_FALSE(Bundle::open(folder.path(), {}));
    for (char const* const identifier : { "", ".", "..", "../x", "a.b" }) {
        platform::Dictionary const info { { "CFBundleIdentifier", identifier }, { "CFBundleShortVersionString", "1" },
            { "ProviderHost", "localhost:1" } };
        platform::writeFileAtomically(folder.path() / "Info.plist", platform::writePropertyList(info));
        EXPECT_EQ(Bundle::open(folder.path(), {}).has_value(), identifier == std::string_view("a.b")) << identifier;
    }
}
