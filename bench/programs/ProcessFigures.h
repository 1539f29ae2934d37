// SPDX-License-Identifier: MIT
#pragma once

#include <chrono>
#include <sys/types.h>
#include <vector>

/// What the kernel tells of a process. Memory is in kB. A process that is gone counts as zero.
namespace processFigures {

/// The processor time of all its threads, those that ended included, but not of its children.
std::chrono::nanoseconds processorTime(pid_t process);

/// Its pages, those that it shares with other processes divided by their number.
long proportionalMemory(pid_t process);
/// The pages that no other process has.
long privateMemory(pid_t process);

long residentMemory(pid_t process);
/// The most that was resident since the start or since forgetPeakMemory().
long peakMemory(pid_t process);
void forgetPeakMemory(pid_t process);

long threads(pid_t process);
long openFiles(pid_t process);

/// How often its living threads have stopped to wait for something: each time, something woke them.
long waits(pid_t process);

std::vector<pid_t> children(pid_t process);

}
