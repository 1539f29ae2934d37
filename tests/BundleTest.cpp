// SPDX-License-Identifier: MIT
#include "platform/Bundle.h"

#include "platform/AtomicFile.h"
#include "platform/PropertyList.h"
#include "tests/support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <ranges>

using platform::Bundle;
namespace fs = std::filesystem;

namespace {

fs::path const shipped = USAGE_METER_BUNDLE;

platform::Dictionary strings(char const* folder)
{
    return platform::readPropertyList(platform::readFile(shipped / folder / "Localizable.strings").value()).value();
}

}

TEST(Bundle, HasEveryTextInBothLanguagesAndPicksTheFirstItHasOrEnglish)
{
    auto const english = strings("en.lproj"), french = strings("fr.lproj");
    EXPECT_TRUE(std::ranges::equal(english | std::views::keys, french | std::views::keys));
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
    fs::copy(shipped, folder.path(), fs::copy_options::recursive);
    fs::create_directory(folder.path() / "pl.lproj");
    platform::writeFileAtomically(folder.path() / "pl.lproj" / "Localizable.strings",
        platform::writePropertyList({ { "H", "godziny" }, { "H_ONE", "godzina" }, { "H_MANY", "godzin" } }));
    auto const polish = *Bundle::open(folder.path(), { "pl" });
    for (auto const& [count, text] : { std::pair(1, "godzina"), { 3, "godziny" }, { 5, "godzin" }, { 22, "godziny" } })
        EXPECT_EQ(polish.localizedString("H", count), text) << count;
    EXPECT_EQ(polish.localizedString("X", 1), "X");
}
