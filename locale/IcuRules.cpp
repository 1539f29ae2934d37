// SPDX-License-Identifier: MIT
#include "locale/IcuRules.h"

#include <unicode/calendar.h>
#include <unicode/datefmt.h>
#include <unicode/plurrule.h>
#include <unicode/timezone.h>

using platform::CalendarMonth;
using platform::Date;

namespace {

std::string toUtf8(icu::UnicodeString const& text)
{
    std::string utf8;
    text.toUTF8String(utf8);
    return utf8;
}

// Returns null if the computer lacks ICU's data.
std::unique_ptr<icu::NumberFormat> makeNumberFormat(std::string const& locale)
{
    UErrorCode status = U_ZERO_ERROR;
    std::unique_ptr<icu::NumberFormat> format(
        icu::NumberFormat::createInstance(icu::Locale(locale.c_str()), UNUM_DECIMAL, status));
    if (U_FAILURE(status))
        return nullptr;
    format->setMinimumFractionDigits(0);
    format->setMaximumFractionDigits(2);
    format->setRoundingMode(icu::NumberFormat::kRoundHalfEven);
    return format;
}

UDate toIcu(Date date)
{
    auto const milliseconds = std::chrono::duration_cast<std::chrono::milliseconds>(date.time_since_epoch());
    return static_cast<UDate>(milliseconds.count());
}

Date fromIcu(UDate date) { return Date(std::chrono::milliseconds(static_cast<std::int64_t>(date))); }

// Returns a calendar set to a date, or null if the computer lacks ICU's data.
std::unique_ptr<icu::Calendar> makeCalendar(Date date, icu::Locale const& locale)
{
    UErrorCode status = U_ZERO_ERROR;
    std::unique_ptr<icu::Calendar> calendar(
        icu::Calendar::createInstance(icu::TimeZone::detectHostTimeZone(), locale, status));
    if (calendar)
        calendar->setTime(toIcu(date), status);
    return U_SUCCESS(status) ? std::move(calendar) : nullptr;
}

// Returns the date unchanged if the calendar fails.
Date movedBy(int months, Date date, icu::Calendar& calendar)
{
    UErrorCode status = U_ZERO_ERROR;
    calendar.setTime(toIcu(date), status);
    calendar.add(UCAL_MONTH, months, status);
    auto const moved = calendar.getTime(status);
    return U_SUCCESS(status) ? fromIcu(moved) : date;
}

}

bool IcuRules::isKnown(std::string const& locale) const
{
    return *icu::Locale(locale.c_str()).getISO3Language() != '\0';
}

bool IcuRules::isRightToLeft(std::string const& language) const
{
    return icu::Locale(language.c_str()).isRightToLeft() != 0;
}

std::string IcuRules::pluralForm(int count, std::string const& language) const
{
    UErrorCode status = U_ZERO_ERROR;
    std::unique_ptr<icu::PluralRules> const rules(icu::PluralRules::forLocale(icu::Locale(language.c_str()), status));
    return rules ? toUtf8(rules->select(count)) : "other";
}

std::string IcuRules::number(double number, std::string const& locale)
{
    if (!numberFormat_ || numberLocale_ != locale)
        numberFormat_ = makeNumberFormat(locale);
    numberLocale_ = locale;
    // A plain number is better than no number.
    if (!numberFormat_)
        return std::to_string(number);
    icu::UnicodeString text;
    return toUtf8(numberFormat_->format(number, text));
}

// A format keeps the day and the time zone of its creation, so each date needs a new one.
std::string IcuRules::date(Date date, std::string const& locale) const
{
    std::unique_ptr<icu::DateFormat> const format(icu::DateFormat::createDateTimeInstance(
        icu::DateFormat::kShortRelative, icu::DateFormat::kShort, icu::Locale(locale.c_str())));
    if (!format)
        return {};
    format->adoptTimeZone(icu::TimeZone::detectHostTimeZone());
    icu::UnicodeString text;
    return toUtf8(format->format(toIcu(date), text));
}

CalendarMonth IcuRules::calendarMonth(Date date, std::string const& locale) const
{
    auto const calendar = makeCalendar(date, icu::Locale(locale.c_str()));
    if (!calendar)
        return {};
    UErrorCode status = U_ZERO_ERROR;
    // ICU counts months from 0.
    CalendarMonth const month { calendar->get(UCAL_YEAR, status), calendar->get(UCAL_MONTH, status) + 1 };
    return U_SUCCESS(status) ? month : CalendarMonth {};
}

Date IcuRules::addingMonths(Date date, int months) const
{
    auto const calendar = makeCalendar(date, icu::Locale("@calendar=gregorian"));
    return calendar ? movedBy(months, date, *calendar) : date;
}

std::vector<Date> IcuRules::monthsBetween(Date earliest, Date latest, std::string const& locale) const
{
    std::vector<Date> dates;
    // All dates share one calendar, since detecting the time zone can be slow.
    auto const calendar = makeCalendar(latest, icu::Locale(locale.c_str()));
    for (Date date = latest; date >= earliest;) {
        dates.push_back(date);
        // Counting from the latest date preserves its day, which a short month in between would cut.
        Date const next = calendar ? movedBy(-static_cast<int>(dates.size()), latest, *calendar) : latest;
        if (next >= date)
            break;
        date = next;
    }
    return dates;
}

std::string IcuRules::monthTitle(Date date, std::string const& locale) const
{
    UErrorCode status = U_ZERO_ERROR;
    std::unique_ptr<icu::DateFormat> const format(
        icu::DateFormat::createInstanceForSkeleton("yMMMM", icu::Locale(locale.c_str()), status));
    if (U_FAILURE(status))
        return {};
    format->adoptTimeZone(icu::TimeZone::detectHostTimeZone());
    icu::UnicodeString text;
    return toUtf8(format->format(toIcu(date), text));
}
