// SPDX-License-Identifier: MIT
#pragma once

#include "platform/Calendar.h"
#include "platform/Date.h"

#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace platform {

/// What locales and languages have rules for. A locale is named as ICU does, and an unknown one counts as English. Main
/// thread only.
class LocaleRules {
public:
    virtual ~LocaleRules() = default;

    virtual bool isKnown(std::string const& locale) const = 0;
    virtual bool isRightToLeft(std::string const& language) const = 0;
    /// The plural form that a language has for a count, as Unicode names it: "one", "few", "other".
    virtual std::string pluralForm(int count, std::string const& language) const = 0;
    /// As NumberFormatter writes it.
    virtual std::string number(double number, std::string const& locale) = 0;
    /// As DateFormatter writes it.
    virtual std::string date(Date date, std::string const& locale) const = 0;
    // As in Calendar.h.
    virtual CalendarMonth calendarMonth(Date date, std::string const& locale) const = 0;
    virtual Date addingMonths(Date date, int months) const = 0;
    virtual std::vector<Date> monthsBetween(Date earliest, Date latest, std::string const& locale) const = 0;
    virtual std::string monthTitle(Date date, std::string const& locale) const = 0;
};

using MakeLocaleRules = std::function<std::unique_ptr<LocaleRules>()>;

/// Says how the rules are made. Called before the first of them is needed.
void setLocaleRules(MakeLocaleRules make);
/// The rules, made if there are none; without any to be had, plain ones that know no locale.
LocaleRules& localeRules();
/// Takes the rules away until they are needed again.
std::unique_ptr<LocaleRules> takeLocaleRules();

}
