// SPDX-License-Identifier: MIT
#include "bench/programs/Measurements.h"
#include "bench/programs/ProcessFigures.h"

#include <algorithm>
#include <string>

using namespace std::chrono_literals;

namespace measurements {

namespace {

constexpr auto startPatience = 20s;
// By then, the pages needed only for the start have been freed.
constexpr auto calm = 2s;
// The toolkit keeps some threads from the start for half a minute.
constexpr auto deepCalm = 35s;

}

bool hasDigit(std::string_view label)
{
    return std::ranges::any_of(label, [](char character) { return character >= '0' && character <= '9'; });
}

bool settle(Desktop& desktop, bool isTitled)
{
    bool const isThere = desktop.waitFor(
        [&] { return desktop.hasItem() && (!isTitled || hasDigit(desktop.panel().label())); }, startPatience);
    if (isThere)
        desktop.rest(calm);
    return isThere;
}

bool start(Desktop& desktop, Program const& program, bool isTitled, Samples const& samples)
{
    if (!desktop.waitFor([&] { return desktop.hasItem(); }, startPatience))
        return false;
    samples.add("start to registered item", Clock::now() - program.begin());
    samples.add("CPU to registered item", processFigures::processorTime(program.id()));

    if (!settle(desktop, isTitled))
        return false;
    samples.addMemory("PSS", processFigures::proportionalMemory(program.id()));
    samples.addMemory("private memory", processFigures::privateMemory(program.id()));
    samples.addCount("threads", processFigures::threads(program.id()));
    samples.addCount("open files", processFigures::openFiles(program.id()));
    return true;
}

bool idle(Desktop& desktop, Program const& program, bool isTitled, std::chrono::seconds time, Samples const& samples)
{
    if (!settle(desktop, isTitled))
        return false;
    desktop.rest(deepCalm);
    auto const waits = processFigures::waits(program.id());
    auto const processorTime = processFigures::processorTime(program.id());
    desktop.rest(time);
    auto const interval = " in " + std::to_string(time.count()) + " idle seconds";
    samples.addCount("wakeups" + interval, processFigures::wakeupsSince(waits, program.id()));
    samples.add("CPU" + interval, processFigures::processorTime(program.id()) - processorTime);
    return true;
}

}
