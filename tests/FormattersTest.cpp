// SPDX-License-Identifier: MIT
#include "platform/DateFormatter.h"
#include "platform/LeadingNumber.h"
#include "platform/Locale.h"
#include "platform/NumberFormatter.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <limits>

TEST(LeadingNumber, TakesTheLongestDecimalNumberAndNoMore)
{
    constexpr double most = std::numeric_limits<double>::max();
    std::string const zeros(400, '0');
    std::vector<std::pair<std::string, double>> const cases { { "52345678901", 52345678901.0 },
        { "  \t\n-12.5e3x", -12500 }, { "+7", 7 }, { ".5", 0.5 }, { "5.", 5 }, { "12,5", 12 }, { "1 000", 1 },
        { "1e3", 1000 }, { "1e+", 1 }, { "2E-2", 0.02 }, { "0x10", 0 }, { "inf", 0 }, { "nan", 0 }, { "", 0 },
        { "-", 0 }, { ".", 0 }, { "- 1", 0 }, { "1e-999", 0 }, { "1e999", most }, { "-1e999", -most },
        { "0." + zeros + "1", 0 }, { "0." + zeros + "1e+50", 0 }, { "1" + zeros + "e-50", most },
        { "1" + zeros + "e-300", 1e100 } };
    for (auto const& [text, number] : cases)
        EXPECT_EQ(platform::leadingNumber(text), number) << text;
}

TEST(NumberFormatter, GroupsAndRoundsHalfToEvenByTheLocale)
{
    struct {
        char const* locale;
        double number;
        char const* text;
    } const cases[] { { "en_US", 52345.678901, "52,345.68" }, { "en_US", 1200, "1,200" }, { "en_US", 0.125, "0.12" },
        { "en_US", 0.375, "0.38" }, { "en_US", 1.0005, "1" }, { "en_US", -5123.456789, "-5,123.46" },
        { "en_US", 0, "0" }, { "de_DE", 52345.678901, "52.345,68" }, { "fr_FR", 52345.678901, "52\u202F345,68" } };
    for (auto const& each : cases)
        EXPECT_EQ(platform::NumberFormatter(each.locale).string(each.number), each.text) << each.locale;
}

TEST(DateFormatter, WritesFarDatesShortInTheLocalesOrderAndTodayAsAWord)
{
    setenv("TZ", "UTC", 1);
    platform::Date const date { std::chrono::sys_days(std::chrono::year(2024) / 5 / 31) + std::chrono::hours(13) };
    EXPECT_EQ(platform::DateFormatter("en_US").string(date), "5/31/24, 1:00\u202FPM");
    EXPECT_EQ(platform::DateFormatter("fr_FR").string(date), "31/05/2024 13:00");
    // The day may be over between the two.
    platform::DateFormatter const today("en_US");
    auto const now = std::chrono::system_clock::now();
    EXPECT_TRUE(today.string(now).starts_with("today") || today.string(now).starts_with("tomorrow"));
}

TEST(Locale, FollowsTheUsualOrderAndFallsBackToEnglish)
{
    struct {
        char const* all;
        char const* numeric;
        char const* lang;
        char const* locale;
    } const cases[] { { "", "", "", "en_US" }, { "", "", "de_AT.UTF-8", "de_AT" },
        { "", "fr_FR@euro", "de_AT", "fr_FR" }, { "nl_NL.UTF-8", "fr_FR", "de_AT", "nl_NL" },
        { "C.UTF-8", "", "de_AT", "en_US" }, { "xq_ZZ", "", "", "en_US" }, { "", "", "../../etc", "en_US" } };
    for (auto const& each : cases) {
        setenv("LC_ALL", each.all, 1);
        setenv("LC_NUMERIC", each.numeric, 1);
        setenv("LANG", each.lang, 1);
        EXPECT_EQ(platform::userLocale("LC_NUMERIC"), each.locale) << each.all << each.numeric << each.lang;
    }
    setenv("LC_ALL", "fr_CA.UTF-8", 1);
    setenv("LANGUAGE", "eo:de_CH", 1);
    EXPECT_EQ(platform::userLanguages(), (std::vector<std::string> { "eo", "de", "fr" }));
    for (char const* const name : { "LC_ALL", "LC_NUMERIC", "LANG", "LANGUAGE" })
        unsetenv(name);
}
