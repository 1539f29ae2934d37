// SPDX-License-Identifier: MIT
#include "platform/Calendar.h"

#include "platform/LocaleRules.h"

#include <chrono>
#include <cstdlib>
#include <filesystem>

namespace platform {

CalendarMonth calendarMonth(Date date, std::string const& locale) { return localeRules().calendarMonth(date, locale); }

Date addingMonths(Date date, int months) { return localeRules().addingMonths(date, months); }

std::vector<Date> monthsBetween(Date earliest, Date latest, std::string const& locale)
{
    return localeRules().monthsBetween(earliest, latest, locale);
}

std::string dayMark(Date now)
{
    static std::filesystem::path const systemZone = "/etc/localtime";
    std::error_code error;
    auto const zone = std::filesystem::read_symlink(systemZone, error);
    auto const zoneChange = std::filesystem::last_write_time(systemZone, error);
    char const* const ownZone
        = std::getenv("TZ"); // NOLINT(concurrency-mt-unsafe): only the main thread uses the environment.
    return std::to_string(std::chrono::floor<QuarterHours>(now.time_since_epoch()).count()) + ' '
        + std::to_string(zoneChange.time_since_epoch().count()) + ' ' + zone.string() + ' ' + (ownZone ? ownZone : "");
}

std::string monthTitle(Date date, std::string const& locale) { return localeRules().monthTitle(date, locale); }

}
