// SPDX-License-Identifier: MIT
#include "platform/Locale.h"
#include "platform/AtomicFile.h"
#include "platform/Bundle.h"
#include "platform/Calendar.h"
#include "platform/DateFormatter.h"
#include "platform/LeadingNumber.h"
#include "platform/PropertyList.h"

#include <gtest/gtest.h>

#include <limits>
#include <ranges>

using namespace std::chrono_literals;

TEST(LeadingNumber, TakesTheLongestDecimalNumber)
{
    constexpr double most = std::numeric_limits<double>::max();
    std::string const zeros(400, '0');
    std::vector<std::pair<std::string, double>> const cases { { "52345678901", 52345678901.0 },
        { " \t\n-12.5e3x", -12500 }, { "+.5", 0.5 }, { "12,5", 12 }, { "1e+", 1 }, { "2E-2", 0.02 }, { "0x10", 0 },
        { "inf", 0 }, { ".", 0 }, { "- 1", 0 }, { "1e-999", 0 }, { "-1e999", -most }, { "0." + zeros + "1e+50", 0 },
        { "1" + zeros + "e-50", most } };
    for (auto const& [text, number] : cases)
        EXPECT_EQ(platform::leadingNumber(text), number) << text;
}

TEST(DateFormatter, WritesADateShortByTheLocale)
{
    setenv("TZ", "UTC", 1);
    auto const date = std::chrono::sys_days(2024y / 5 / 31) + 13h;
    EXPECT_EQ(platform::DateFormatter("en_US").string(date), "5/31/24, 1:00\u202FPM");
    EXPECT_EQ(platform::DateFormatter("fr_FR").string(date), "31/05/2024 13:00");
    // The day may be over between the two.
    auto const today = platform::DateFormatter("en_US").string(std::chrono::system_clock::now());
    EXPECT_TRUE(today.starts_with("today") || today.starts_with("yesterday")) << today;
    unsetenv("TZ");
}

TEST(Locale, FollowsTheUsualOrderOfVariables)
{
    std::vector<std::array<char const*, 4>> const cases { { "", "", "", "en_US" }, { "", "", "de_AT.UTF-8", "de_AT" },
        { "", "fr_FR@euro", "de_AT", "fr_FR" }, { "nl_NL.UTF-8", "fr_FR", "de_AT", "nl_NL" },
        { "C.UTF-8", "", "de_AT", "en_US" }, { "xq_ZZ", "", "", "en_US" }, { "", "", "../../etc", "en_US" } };
    for (auto const& [all, numeric, lang, locale] : cases) {
        setenv("LC_ALL", all, 1);
        setenv("LC_NUMERIC", numeric, 1);
        setenv("LANG", lang, 1);
        EXPECT_EQ(platform::userLocale("LC_NUMERIC"), locale) << all << numeric << lang;
    }
    setenv("LC_ALL", "fr_CA.UTF-8", 1);
    setenv("LANGUAGE", "eo:de_CH", 1);
    EXPECT_EQ(platform::userLanguages(), (std::vector<std::string> { "eo", "de", "fr" }));
    for (char const* const name : { "LC_ALL", "LC_NUMERIC", "LANG", "LANGUAGE" })
        unsetenv(name);
}

TEST(Calendar, AMonthIsThatOfTheUsersCalendarAtThePlaceOfTheMoment)
{
    auto const newYearsEve = std::chrono::sys_days(2026y / 12 / 31);
    // The computer is carried elsewhere while the program runs.
    for (auto const& [zone, date, locale, year, month, title] :
        { std::tuple("Pacific/Auckland", newYearsEve + 10h, "en_US", 2026, 12, "December 2026"),
            { "Pacific/Auckland", newYearsEve + 12h, "fr_FR", 2027, 1, "janvier 2027" },
            { "America/New_York", newYearsEve + 28h, "xx_YY", 2026, 12, "December 2026" },
            { "America/New_York", newYearsEve + 29h, "th_TH", 2570, 1, "มกราคม 2570" } }) {
        ::setenv("TZ", zone, 1);
        EXPECT_EQ(platform::calendarMonth(date, locale), (platform::CalendarMonth { year, month })) << locale;
        EXPECT_EQ(platform::monthTitle(date, locale), title);
    }
    ::unsetenv("TZ");
}

TEST(Calendar, StepsFromMonthToMonthWithoutLosingOne)
{
    platform::Date const latest = std::chrono::sys_days(2026y / 3 / 31) + 10h;
    auto const dates = platform::monthsBetween(platform::addingMonths(latest, -12), latest, "en_US");
    ASSERT_EQ(dates.size(), 13U);
    EXPECT_EQ(platform::monthTitle(dates[1], "en_US"), "February 2026");
}

TEST(Bundle, HasEveryTextInBothLanguages)
{
    auto const textsIn = [](char const* folder) {
        auto const file = std::filesystem::path(USAGE_METER_BUNDLE) / folder / "Localizable.strings";
        return platform::readPropertyList(platform::readFile(file).value()).value();
    };
    auto const english = textsIn("en.lproj"), french = textsIn("fr.lproj");
    EXPECT_TRUE(std::ranges::equal(english | std::views::keys, french | std::views::keys));
    // It stands between single quotes in a script.
    for (auto const& texts : { english, french })
        EXPECT_EQ(
            platform::entry<std::string>(texts, "DETAILED_USAGE_WARNING")->find_first_of("'\\\n"), std::string::npos);
}

TEST(Bundle, PicksTheFirstLanguageItHasOrEnglish)
{
    EXPECT_EQ(platform::Bundle::open(USAGE_METER_BUNDLE, { "eo", "fr" })->localizedString("QUIT"), "Quitter");
    EXPECT_EQ(platform::Bundle::open(USAGE_METER_BUNDLE, { "eo" })->localizedString("QUIT"), "Quit");
}
