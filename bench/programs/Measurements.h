// SPDX-License-Identifier: MIT
#pragma once

#include "bench/programs/Desktop.h"
#include "bench/programs/Program.h"
#include "bench/programs/Samples.h"

#include <span>
#include <string_view>

/// What can be measured of a program that was just started. Each returns false when the program does not do what is to
/// be measured.
namespace measurements {

/// Whether it holds a figure, as the label of an item does once the program has a report.
bool hasDigit(std::string_view label);

/// Waits until the item is on the panel and nothing of the start is under way any more. A titled program is there once
/// its item's label holds a figure.
bool settle(Desktop& desktop, bool isTitled);

/// From the start to the item on the panel, and what the program takes up when it has settled.
bool start(Desktop& desktop, Program const& program, bool isTitled, Samples const& samples);

/// What a settled program does that has nothing to do.
bool idle(Desktop& desktop, Program const& program, bool isTitled, std::chrono::seconds time, Samples const& samples);

/// From clicks in the menu of a titled program to what its label then says.
bool clicks(Desktop& desktop, int count, Samples const& samples);

/// From clicks in the menu of a titled program to its usage window: the first one, and as many later ones.
bool windows(Desktop& desktop, int count, Samples const& samples);

/// What a program without settings takes up with its windows: the preferences and the sheet that asks for a key, which
/// it shows by itself, and the usage window.
bool firstStart(Desktop& desktop, Program const& program, Samples const& samples);

/// What a refresh takes of memory for a moment, in a titled program and in its helper. The connections' keys are given;
/// the helper is compared with itself at the first of them.
bool replies(Desktop& desktop, Program const& program, std::span<char* const> keys, Samples const& samples);

}
