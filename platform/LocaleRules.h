// SPDX-License-Identifier: MIT
#pragma once

#include "platform/Calendar.h"
#include "platform/Date.h"

#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace platform {

/// The rules of locales and languages. Locales have ICU names, and an unknown locale is treated as English. Main thread
/// only.
class LocaleRules {
public:
    virtual ~LocaleRules() = default;

    virtual bool isKnown(std::string const& locale) const = 0;
    virtual bool isRightToLeft(std::string const& language) const = 0;
    /// Returns a language's plural form for a count by its Unicode name, such as "one", "few" or "other".
    virtual std::string pluralForm(int count, std::string const& language) const = 0;
    /// See NumberFormatter.
    virtual std::string number(double number, std::string const& locale) = 0;
    /// See DateFormatter.
    virtual std::string date(Date date, std::string const& locale) const = 0;
    // See Calendar.h.
    virtual CalendarMonth calendarMonth(Date date, std::string const& locale) const = 0;
    virtual Date addingMonths(Date date, int months) const = 0;
    virtual std::vector<Date> monthsBetween(Date earliest, Date latest, std::string const& locale) const = 0;
    virtual std::string monthTitle(Date date, std::string const& locale) const = 0;
};

using MakeLocaleRules = std::function<std::unique_ptr<LocaleRules>()>;

/// Sets the factory for the rules. Call it before the rules are first needed.
void setLocaleRules(MakeLocaleRules make);
/// Returns the rules, making them if needed. If they cannot be made, returns plain ones that know no locale.
LocaleRules& localeRules();
/// Releases the rules; they are made again when next needed.
std::unique_ptr<LocaleRules> takeLocaleRules();

}
