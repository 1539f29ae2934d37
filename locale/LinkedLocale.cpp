// SPDX-License-Identifier: MIT
#include "locale/IcuRules.h"

namespace {

[[maybe_unused]] bool const areRulesSet = [] {
    platform::setLocaleRules([] { return std::make_unique<IcuRules>(); });
    return true;
}();

}
