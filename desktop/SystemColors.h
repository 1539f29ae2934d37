// SPDX-License-Identifier: MIT
#pragma once

#include "platform/Color.h"

/// The colours of our windows in an appearance, independent of the toolkit.
platform::SystemColors systemColors(platform::Appearance appearance);
