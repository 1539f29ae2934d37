// SPDX-License-Identifier: MIT
#pragma once

#include "platform/LocaleRules.h"

#include <memory>

// The library's entry points, found by these names.

using MakeRules = void (*)(std::unique_ptr<platform::LocaleRules>& made);
constexpr char const* makeRulesName = "makeUsageMeterLocaleRules";

/// Destroys the rules and all of ICU's caches, after which the library can be unloaded. Nobody else may use ICU.
using ReleaseRules = void (*)(std::unique_ptr<platform::LocaleRules>& rules);
constexpr char const* releaseRulesName = "releaseUsageMeterLocaleRules";
