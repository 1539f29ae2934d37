// SPDX-License-Identifier: MIT
#pragma once

#include "platform/LocaleRules.h"

#include <unicode/numfmt.h>

/// The rules of the Unicode Common Locale Data Repository, as provided by ICU, in the computer's current time zone.
class IcuRules final : public platform::LocaleRules {
public:
    bool isKnown(std::string const& locale) const override;
    bool isRightToLeft(std::string const& language) const override;
    std::string pluralForm(int count, std::string const& language) const override;
    std::string number(double number, std::string const& locale) override;
    std::string date(platform::Date date, std::string const& locale) const override;
    platform::CalendarMonth calendarMonth(platform::Date date, std::string const& locale) const override;
    platform::Date addingMonths(platform::Date date, int months) const override;
    std::vector<platform::Date> monthsBetween(
        platform::Date earliest, platform::Date latest, std::string const& locale) const override;
    std::string monthTitle(platform::Date date, std::string const& locale) const override;

private:
    /// Caches the format of the last locale, since there are many numbers but few locales.
    std::string numberLocale_;
    std::unique_ptr<icu::NumberFormat> numberFormat_;
};
