// SPDX-License-Identifier: MIT
#include "platform/NumberFormatter.h"

#include "platform/LocaleRules.h"

namespace platform {

std::string NumberFormatter::string(double number) const { return localeRules().number(number, locale_); }

}
