// SPDX-License-Identifier: MIT
#pragma once

#include "platform/Date.h"

#include <chrono>
#include <cstdint>
#include <ratio>
#include <string>
#include <vector>

// Functions on months in the computer's current time zone. Locales have ICU names, and an unknown locale is treated as
// English. Main thread only.
namespace platform {

/// Time zones differ by whole quarters of an hour, so a day always begins at the start of one.
using QuarterHours = std::chrono::duration<std::int64_t, std::ratio<900>>;

/// A month of a calendar; months count from 1.
struct CalendarMonth {
    int year = 0;
    int month = 0;

    bool operator==(CalendarMonth const&) const = default;
};

/// Returns the month that contains the date in the locale's calendar.
CalendarMonth calendarMonth(Date date, std::string const& locale);

/// Returns the same day and time in another month of the Gregorian calendar, or that month's last day if it is shorter.
Date addingMonths(Date date, int months);

/// Returns a date in each month between two dates, the latest first: the latest date itself, then dates one month
/// apart.
std::vector<Date> monthsBetween(Date earliest, Date latest, std::string const& locale);

/// Returns a text that changes whenever the local day or the time zone may have changed. Cheap enough to poll.
std::string dayMark(Date now);

/// Returns a month with its year as the locale writes it, such as "November 2026".
std::string monthTitle(Date date, std::string const& locale);

}
