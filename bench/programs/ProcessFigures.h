// SPDX-License-Identifier: MIT
#pragma once

#include <chrono>
#include <map>
#include <string_view>
#include <sys/types.h>
#include <vector>

/// What the kernel reports about a process. Memory is in kB. All values are zero for a process that has ended.
namespace processFigures {

/// The processor time of all its threads, including those that have ended, but not of its children.
std::chrono::nanoseconds processorTime(pid_t process);

/// Its pages, with each shared page divided by the number of processes that share it.
long proportionalMemory(pid_t process);
/// The pages that no other process shares.
long privateMemory(pid_t process);

long residentMemory(pid_t process);
/// The peak since the start or since resetPeakMemory().
long peakMemory(pid_t process);
void resetPeakMemory(pid_t process);

long threads(pid_t process);
long openFiles(pid_t process);

/// The number of times that each living thread has blocked.
using Waits = std::map<pid_t, long>;
Waits waits(pid_t process);
/// The number of times that the process's threads have woken up since then; a thread that has ended counts once.
long wakeupsSince(Waits const& before, pid_t process);

/// The children that run this program, by the name that the kernel cuts to 15 characters.
std::vector<pid_t> children(pid_t process, std::string_view name);

}
