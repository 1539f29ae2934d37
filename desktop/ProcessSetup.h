// SPDX-License-Identifier: MIT
#pragma once

// What the process has to settle before it starts anything. Main thread only, before there are others.

/// Leaves the standard streams open, if only on /dev/null, and makes writing to a broken one an error, not a signal.
void openStandardStreams();

/// Lets the program learn how its children end, whatever its parent process ignores.
void resetSigchld();

/// Applies the toolkit's own options that choose a display, which the program needs before the toolkit.
void applyDisplayOptions(int count, char** arguments);

/// Keeps the toolkit from waiting half a minute for a session bus that admits nobody.
void hideBusFromToolkit();
