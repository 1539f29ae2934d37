// SPDX-License-Identifier: MIT
#pragma once

#include "desktop/Look.h"

/// Applies the palette and the style of a look to all windows. Does nothing on Plasma, where the toolkit follows the
/// desktop's style and colours by itself. Main thread only.
void applyLook(Look const& look);
