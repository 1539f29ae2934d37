// SPDX-License-Identifier: MIT
#pragma once

#include "platform/Date.h"

#include <string>
#include <vector>

// Months, in the computer's present time zone. A locale is named as ICU does, and an unknown one counts as English.
// Main thread only.
namespace platform {

/// A month of a calendar; 1 is the year's first one.
struct CalendarMonth {
    int year = 0;
    int month = 0;

    bool operator==(CalendarMonth const&) const = default;
};

/// The month that a date lies in, in the calendar of the locale.
CalendarMonth calendarMonth(Date date, std::string const& locale);

/// The same day and time in another month of the Gregorian calendar, or that month's last day where it is shorter.
Date addingMonths(Date date, int months);

/// A date in each month between two dates, the latest first: the latest date itself, and those a month apart from it.
std::vector<Date> monthsBetween(Date earliest, Date latest, std::string const& locale);

/// A text that is another one once the local day or the time zone may be another one, at little cost.
std::string dayMark(Date now);

/// A month with its year, as the locale writes it: "November 2026".
std::string monthTitle(Date date, std::string const& locale);

}
