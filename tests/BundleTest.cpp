// SPDX-License-Identifier: MIT
#include "platform/Bundle.h"

#include "platform/AtomicFile.h"
#include "platform/PropertyList.h"

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

TEST(Bundle, HasEveryTextInBothLanguages)
{
    auto const english = strings("en.lproj"), french = strings("fr.lproj");
    EXPECT_TRUE(std::ranges::equal(english | std::views::keys, french | std::views::keys));
    // It stands between single quotes in a script.
    for (auto const& table : { english, french })
        EXPECT_EQ(platform::entry<std::string>(table, "DETAILED_USAGE_WARNING")->find_first_of("'\\\n"), -1);
}

TEST(Bundle, PicksTheFirstLanguageItHasOrEnglish)
{
    EXPECT_EQ(Bundle::open(shipped, { "eo", "fr" })->localizedString("QUIT"), "Quitter");
    EXPECT_EQ(Bundle::open(shipped, { "eo" })->localizedString("QUIT"), "Quit");
}
