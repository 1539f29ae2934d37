// SPDX-License-Identifier: MIT
#include "platform/DateFormatter.h"

#include "platform/LocaleRules.h"

namespace platform {

std::string DateFormatter::string(Date date) const { return localeRules().date(date, locale_); }

}
