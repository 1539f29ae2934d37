// SPDX-License-Identifier: MIT
#pragma once

#include <chrono>

using Clock = std::chrono::steady_clock;
using Milliseconds = std::chrono::duration<double, std::milli>;
