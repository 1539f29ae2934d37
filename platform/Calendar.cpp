// SPDX-License-Identifier: MIT
#include "platform/Calendar.h"

#include <unicode/calendar.h>
#include <unicode/datefmt.h>
#include <unicode/timezone.h>

#include <memory>

namespace platform {

namespace {

UDate toIcu(Date date)
{
    auto const milliseconds = std::chrono::duration_cast<std::chrono::milliseconds>(date.time_since_epoch());
    return static_cast<UDate>(milliseconds.count());
}

Date fromIcu(UDate date) { return Date(std::chrono::milliseconds(static_cast<std::int64_t>(date))); }

// Set to a date. None when the computer lacks ICU's data.
std::unique_ptr<icu::Calendar> makeCalendar(Date date, icu::Locale const& locale)
{
    UErrorCode status = U_ZERO_ERROR;
    std::unique_ptr<icu::Calendar> calendar(
        icu::Calendar::createInstance(icu::TimeZone::detectHostTimeZone(), locale, status));
    if (calendar)
        calendar->setTime(toIcu(date), status);
    return U_SUCCESS(status) ? std::move(calendar) : nullptr;
}

// The same date if the calendar cannot tell.
Date addingMonths(Date date, int months, icu::Calendar& calendar)
{
    UErrorCode status = U_ZERO_ERROR;
    calendar.setTime(toIcu(date), status);
    calendar.add(UCAL_MONTH, months, status);
    auto const moved = calendar.getTime(status);
    return U_SUCCESS(status) ? fromIcu(moved) : date;
}

}

CalendarMonth calendarMonth(Date date, std::string const& locale)
{
    auto const calendar = makeCalendar(date, icu::Locale(locale.c_str()));
    if (!calendar)
        return {};
    UErrorCode status = U_ZERO_ERROR;
    // ICU counts months from 0.
    CalendarMonth const month { calendar->get(UCAL_YEAR, status), calendar->get(UCAL_MONTH, status) + 1 };
    return U_SUCCESS(status) ? month : CalendarMonth {};
}

Date addingMonths(Date date, int months)
{
    auto const calendar = makeCalendar(date, icu::Locale("@calendar=gregorian"));
    return calendar ? addingMonths(date, months, *calendar) : date;
}

std::vector<Date> monthsBetween(Date earliest, Date latest, std::string const& locale)
{
    std::vector<Date> dates;
    // One for all: finding the time zone out can take long.
    auto const calendar = makeCalendar(latest, icu::Locale(locale.c_str()));
    for (Date date = latest; date >= earliest;) {
        dates.push_back(date);
        // From the latest date each time, whose day a short month in between would cut off.
        Date const next = calendar ? addingMonths(latest, -static_cast<int>(dates.size()), *calendar) : latest;
        if (next >= date)
            break;
        date = next;
    }
    return dates;
}

std::string monthTitle(Date date, std::string const& locale)
{
    UErrorCode status = U_ZERO_ERROR;
    std::unique_ptr<icu::DateFormat> const format(
        icu::DateFormat::createInstanceForSkeleton("yMMMM", icu::Locale(locale.c_str()), status));
    if (U_FAILURE(status))
        return {};
    format->adoptTimeZone(icu::TimeZone::detectHostTimeZone());
    icu::UnicodeString text;
    std::string utf8;
    return format->format(toIcu(date), text).toUTF8String(utf8);
}

}
