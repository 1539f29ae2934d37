// SPDX-License-Identifier: MIT
#pragma once

#include <chrono>
#include <map>
#include <string_view>
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

/// How often each living thread has stopped to wait for something.
using Waits = std::map<pid_t, long>;
Waits waits(pid_t process);
/// How often something has woken a thread of the process since then; a thread that has ended counts as one time.
long wakeupsSince(Waits const& before, pid_t process);

/// The children that run this program, by the name that the kernel cuts off at 15 characters.
std::vector<pid_t> children(pid_t process, std::string_view name);

}
