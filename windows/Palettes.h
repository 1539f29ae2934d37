// SPDX-License-Identifier: MIT
#pragma once

#include "platform/Color.h"

/// Gives all windows the palette and the style of an appearance. Main thread only.
void applyAppearance(platform::Appearance appearance);
