// SPDX-License-Identifier: MIT
#include "desktop/LateLocale.h"

#include "locale/LocaleLibrary.h"

#include <chrono>

namespace {

using namespace std::chrono_literals;

// A refresh formats at its beginning and at its end, which are usually less than this apart.
constexpr auto timeOfUse = 1s;

}

LateLocale::LateLocale(DesktopRunLoop& loop, std::filesystem::path const& library)
    : loop_(loop)
    , library_(library)
{
    platform::setLocaleRules([this] { return make(); });
}

LateLocale::~LateLocale()
{
    platform::setLocaleRules(nullptr);
    letGo();
}

std::unique_ptr<platform::LocaleRules> LateLocale::make()
{
    std::unique_ptr<platform::LocaleRules> rules;
    if (auto const makeRules = library_.find<MakeRules>(makeRulesName))
        makeRules(rules);
    loop_.performAfter(timeOfUse, [this] { letGo(); });
    return rules;
}

void LateLocale::letGo()
{
    auto const letGoOfRules
        = library_.isLoaded() && !loop_.hasOuter() ? library_.find<LetGoOfRules>(letGoOfRulesName) : nullptr;
    if (!letGoOfRules)
        return;
    auto rules = platform::takeLocaleRules();
    letGoOfRules(rules);
    library_.unload();
}
