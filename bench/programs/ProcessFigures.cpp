// SPDX-License-Identifier: MIT
#include "bench/programs/ProcessFigures.h"

#include <algorithm>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <string_view>

namespace processFigures {

namespace {

std::filesystem::path folderOf(pid_t process) { return std::filesystem::path("/proc") / std::to_string(process); }

std::filesystem::directory_iterator entries(std::filesystem::path const& folder)
{
    std::error_code error;
    return { folder, error };
}

std::string nameOf(pid_t process)
{
    std::string name;
    std::getline(std::ifstream(folderOf(process) / "comm"), name);
    return name;
}

// Reads the number from a line "Name:   12 kB".
long field(std::filesystem::path const& path, std::string_view name)
{
    std::ifstream file(path);
    std::string line;
    while (std::getline(file, line)) {
        if (line.starts_with(name))
            return std::stol(line.substr(name.size()));
    }
    return 0;
}

}

std::chrono::nanoseconds processorTime(pid_t process)
{
    clockid_t clock {};
    timespec time {};
    if (clock_getcpuclockid(process, &clock) != 0 || clock_gettime(clock, &time) != 0)
        return {};
    return std::chrono::seconds(time.tv_sec) + std::chrono::nanoseconds(time.tv_nsec);
}

long proportionalMemory(pid_t process) { return field(folderOf(process) / "smaps_rollup", "Pss:"); }

long privateMemory(pid_t process)
{
    auto const file = folderOf(process) / "smaps_rollup";
    return field(file, "Private_Clean:") + field(file, "Private_Dirty:");
}

long residentMemory(pid_t process) { return field(folderOf(process) / "status", "VmRSS:"); }

long peakMemory(pid_t process) { return field(folderOf(process) / "status", "VmHWM:"); }

void resetPeakMemory(pid_t process) { std::ofstream(folderOf(process) / "clear_refs") << "5"; }

long threads(pid_t process) { return field(folderOf(process) / "status", "Threads:"); }

long openFiles(pid_t process)
{
    auto const files = entries(folderOf(process) / "fd");
    return std::distance(begin(files), end(files));
}

Waits waits(pid_t process)
{
    Waits found;
    for (auto const& thread : entries(folderOf(process) / "task"))
        found[std::stoi(thread.path().filename())] = field(thread.path() / "status", "voluntary_ctxt_switches:");
    return found;
}

long wakeupsSince(Waits const& before, pid_t process)
{
    auto const after = waits(process);
    long sum = 0;
    for (auto const& [thread, count] : after) {
        auto const known = before.find(thread);
        sum += count - (known == before.end() ? 0 : known->second);
    }
    auto const hasEnded = [&after](auto const& thread) { return !after.contains(thread.first); };
    return sum + std::ranges::count_if(before, hasEnded);
}

std::vector<pid_t> children(pid_t process, std::string_view name)
{
    std::vector<pid_t> found;
    for (auto const& thread : entries(folderOf(process) / "task")) {
        std::ifstream file(thread.path() / "children");
        std::copy_if(std::istream_iterator<pid_t>(file), {}, std::back_inserter(found),
            [name](pid_t child) { return nameOf(child) == name; });
    }
    return found;
}

}
