// SPDX-License-Identifier: MIT
#pragma once

#include "platform/Property.h"

#include <string>

namespace platform {
class Bundle;
}
struct Outlets;

/// Shows beside the cap field which number the typed cap is read as, if that is not obvious, for as long as the
/// subscription lives. The locale has an ICU name.
platform::Subscription showCapReading(Outlets& outlets, platform::Bundle const& bundle, std::string numberLocale);
