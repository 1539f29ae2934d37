// SPDX-License-Identifier: MIT
#include "platform/Calendar.h"

#include <gtest/gtest.h>

#include <cstdlib>

using namespace std::chrono_literals;
using platform::CalendarMonth;

namespace {

platform::Date utc(int year, unsigned month, unsigned day, int hour)
{
    return std::chrono::sys_days(std::chrono::year(year) / std::chrono::month(month) / std::chrono::day(day))
        + 1h * hour;
}

class CalendarTest : public ::testing::Test {
protected:
    ~CalendarTest() override { ::unsetenv("TZ"); }
};

}

TEST_F(CalendarTest, AMonthIsThatOfTheUsersCalendarAndTimeZone)
{
    ::setenv("TZ", "Pacific/Auckland", 1);
    EXPECT_EQ(platform::calendarMonth(utc(2026, 12, 31, 10), "en_US"), (CalendarMonth { 2026, 12 }));
    EXPECT_EQ(platform::calendarMonth(utc(2026, 12, 31, 12), "en_US"), (CalendarMonth { 2027, 1 }));
    EXPECT_EQ(platform::monthTitle(utc(2026, 12, 31, 12), "fr_FR"), "janvier 2027");
    // The computer is carried elsewhere while the program runs.
    ::setenv("TZ", "America/New_York", 1);
    EXPECT_EQ(platform::calendarMonth(utc(2027, 1, 1, 4), "xx_YY"), (CalendarMonth { 2026, 12 }));
    EXPECT_EQ(platform::calendarMonth(utc(2026, 11, 24, 12), "th_TH"), (CalendarMonth { 2569, 11 }));
    EXPECT_EQ(platform::monthTitle(utc(2027, 1, 1, 4), "en_US"), "December 2026");
}

TEST_F(CalendarTest, StepsFromMonthToMonthWithoutLosingOne)
{
    ::setenv("TZ", "UTC", 1);
    auto const latest = utc(2026, 3, 31, 10);
    auto const earliest = platform::addingMonths(latest, -12);
    EXPECT_EQ(earliest, utc(2025, 3, 31, 10));
    EXPECT_EQ(platform::addingMonths(latest, -1), utc(2026, 2, 28, 10));
    auto const dates = platform::monthsBetween(earliest, latest, "en_US");
    ASSERT_EQ(dates.size(), 13U);
    EXPECT_EQ(platform::calendarMonth(dates[1], "en_US"), (CalendarMonth { 2026, 2 }));
    EXPECT_EQ(platform::calendarMonth(dates[12], "en_US"), (CalendarMonth { 2025, 3 }));
    EXPECT_TRUE(platform::monthsBetween(latest, earliest, "en_US").empty());
}
