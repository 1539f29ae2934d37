// SPDX-License-Identifier: MIT
#include "platform/DateFormatter.h"
#include "platform/LeadingNumber.h"
#include "platform/Locale.h"
#include "platform/NumberFormatter.h"

#include <gtest/gtest.h>

#include <limits>

TEST(LeadingNumber, TakesTheLongestDecimalNumberAndNoMore)
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

TEST(NumberFormatter, GroupsAndRoundsHalfToEvenByTheLocale)
{
    platform::NumberFormatter const english("en_US"), german("de_DE"), french("fr_FR");
    for (auto const& [number, text] : { std::pair(52345.678901, "52,345.68"), { 1200, "1,200" }, { 0.125, "0.12" },
             { 0.375, "0.38" }, { 1.0005, "1" }, { -5123.456789, "-5,123.46" } })
        EXPECT_EQ(english.string(number), text);
    EXPECT_EQ(german.string(52345.678901), "52.345,68");
    EXPECT_EQ(french.string(52345.678901), "52\u202F345,68");
}

TEST(DateFormatter, WritesFarDatesShortInTheLocalesOrderAndTodayAsAWord)
{
    setenv("TZ", "UTC", 1);
    platform::Date const date { std::chrono::sys_days(std::chrono::year(2024) / 5 / 31) + std::chrono::hours(13) };
    EXPECT_EQ(platform::DateFormatter("en_US").string(date), "5/31/24, 1:00\u202FPM");
    EXPECT_EQ(platform::DateFormatter("fr_FR").string(date), "31/05/2024 13:00");
    // The day may be over between the two.
    auto const today = platform::DateFormatter("en_US").string(std::chrono::system_clock::now());
    EXPECT_TRUE(today.starts_with("today") || today.starts_with("yesterday")) << today;
    unsetenv("TZ");
}

TEST(Locale, FollowsTheUsualOrderAndFallsBackToEnglish)
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
