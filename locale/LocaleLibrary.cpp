// SPDX-License-Identifier: MIT
#include "locale/LocaleLibrary.h"

#include "locale/IcuRules.h"

#include <unicode/uclean.h>

extern "C" __attribute__((visibility("default"))) void makeUsageMeterLocaleRules(
    std::unique_ptr<platform::LocaleRules>& made)
{
    made = std::make_unique<IcuRules>();
}

extern "C" __attribute__((visibility("default"))) void releaseUsageMeterLocaleRules(
    std::unique_ptr<platform::LocaleRules>& rules)
{
    rules.reset();
    u_cleanup();
}
