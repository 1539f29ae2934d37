// SPDX-License-Identifier: MIT
#pragma once

#include "desktop/Look.h"

/// Gives all windows the palette and the style of a look. On Plasma, whose own style and colours the toolkit follows by
/// itself, it changes nothing. Main thread only.
void applyLook(Look const& look);
