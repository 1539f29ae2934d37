// SPDX-License-Identifier: MIT
#include "platform/Calendar.h"

#include <gtest/gtest.h>

#include <cstdlib>

using namespace std::chrono_literals;
using std::chrono::sys_days;

TEST(CalendarTest, AMonthIsThatOfTheUsersCalendarAtThePlaceOfTheMoment)
{
    auto const newYearsEve = sys_days(2026y / 12 / 31);
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

TEST(CalendarTest, StepsFromMonthToMonthWithoutLosingOne)
{
    platform::Date const latest = sys_days(2026y / 3 / 31) + 10h;
    auto const earliest = platform::addingMonths(latest, -12);
    EXPECT_EQ(earliest, sys_days(2025y / 3 / 31) + 10h);
    auto const dates = platform::monthsBetween(earliest, latest, "en_US");
    ASSERT_EQ(dates.size(), 13U);
    EXPECT_EQ(platform::monthTitle(dates[1], "en_US"), "February 2026");
    EXPECT_EQ(platform::addingMonths(latest, -1), sys_days(2026y / 2 / 28) + 10h);
    EXPECT_TRUE(platform::monthsBetween(latest, earliest, "en_US").empty());
}
