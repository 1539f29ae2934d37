// SPDX-License-Identifier: MIT
#pragma once

/// The factor by which time limits grow under a sanitizer.
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
inline constexpr int slowness = 10;
#else
inline constexpr int slowness = 1;
#endif
