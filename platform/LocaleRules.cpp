// SPDX-License-Identifier: MIT
#include "platform/LocaleRules.h"

namespace platform {

namespace {

/// A fallback with readable figures and no dates.
class PlainRules final : public LocaleRules {
public:
    bool isKnown(std::string const& /*locale*/) const override { return false; }
    bool isRightToLeft(std::string const& /*language*/) const override { return false; }
    std::string pluralForm(int /*count*/, std::string const& /*language*/) const override { return "other"; }
    std::string number(double number, std::string const& /*locale*/) override { return std::to_string(number); }
    std::string date(Date /*date*/, std::string const& /*locale*/) const override { return {}; }
    CalendarMonth calendarMonth(Date /*date*/, std::string const& /*locale*/) const override { return {}; }
    Date addingMonths(Date date, int /*months*/) const override { return date; }
    std::vector<Date> monthsBetween(Date /*earliest*/, Date latest, std::string const& /*locale*/) const override
    {
        return { latest };
    }
    std::string monthTitle(Date /*date*/, std::string const& /*locale*/) const override { return {}; }
};

// A local static, because some programs set it before main(), in any order of initialization.
MakeLocaleRules& maker()
{
    static MakeLocaleRules make;
    return make;
}

std::unique_ptr<LocaleRules> rulesInUse;

}

void setLocaleRules(MakeLocaleRules make) { maker() = std::move(make); }

LocaleRules& localeRules()
{
    if (!rulesInUse && maker())
        rulesInUse = maker()();
    if (!rulesInUse)
        rulesInUse = std::make_unique<PlainRules>();
    return *rulesInUse;
}

std::unique_ptr<LocaleRules> takeLocaleRules() { return std::move(rulesInUse); }

}
