// SPDX-License-Identifier: MIT
#pragma once

#include <chrono>

namespace platform {

/// A moment on the wall clock. Property lists store it in whole seconds of UTC.
using Date = std::chrono::system_clock::time_point;

}
