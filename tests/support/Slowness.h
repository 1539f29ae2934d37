// SPDX-License-Identifier: MIT
#pragma once

/// How many times longer than else a test may wait where a sanitizer looks on.
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
inline constexpr int slowness = 10;
#else
inline constexpr int slowness = 1;
#endif
