// SPDX-License-Identifier: MIT
#include "desktop/LateLocale.h"

#include "locale/LocaleLibrary.h"

#include <chrono>

namespace {

using namespace std::chrono_literals;

// A refresh formats at its beginning and at its end, which are usually less than this apart.
constexpr auto unloadDelay = 1s;

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
    release();
}

std::unique_ptr<platform::LocaleRules> LateLocale::make()
{
    std::unique_ptr<platform::LocaleRules> rules;
    if (auto const makeRules = library_.find<MakeRules>(makeRulesName))
        makeRules(rules);
    loop_.performAfter(unloadDelay, [this] { release(); });
    return rules;
}

void LateLocale::release()
{
    auto const releaseRules
        = library_.isLoaded() && !loop_.hasOuter() ? library_.find<ReleaseRules>(releaseRulesName) : nullptr;
    if (!releaseRules)
        return;
    auto rules = platform::takeLocaleRules();
    releaseRules(rules);
    library_.unload();
}
