// SPDX-License-Identifier: MIT
#pragma once

#include "bench/programs/Desktop.h"
#include "bench/programs/Program.h"
#include "bench/programs/Samples.h"

#include <span>
#include <string_view>

/// The measurements of a program that was just started. Each returns false if the program does not behave as expected.
namespace measurements {

/// Whether the text contains a digit, as an item's label does once the program has a report.
bool hasDigit(std::string_view label);

/// Waits until the item is on the panel and the start has finished. A titled program must also show a figure in its
/// label.
bool settle(Desktop& desktop, bool isTitled);

/// Measures the time from the start to the item on the panel, and the resources in use after settling.
bool start(Desktop& desktop, Program const& program, bool isTitled, Samples const& samples);

/// Measures the activity of a settled, idle program.
bool idle(Desktop& desktop, Program const& program, bool isTitled, std::chrono::seconds time, Samples const& samples);

/// Measures the time from clicks in a titled program's menu to its new label.
bool clicks(Desktop& desktop, int count, Samples const& samples);

/// Measures the time from clicks in a titled program's menu to its usage window: the first time, and as many later
/// ones.
bool windows(Desktop& desktop, int count, Samples const& samples);

/// Measures the resources of a program without settings and with its windows: the preferences and the add-key sheet,
/// which it opens by itself, and the usage window.
bool firstStart(Desktop& desktop, Program const& program, Samples const& samples);

/// Measures the peak memory of refreshes in a titled program and in its helper, for the connections with these keys.
/// The first key is the baseline for the helper.
bool replies(Desktop& desktop, Program const& program, std::span<char* const> keys, Samples const& samples);

}
