// SPDX-License-Identifier: MIT
// Measures a program with a status item from outside.
#include "bench/programs/Measurements.h"

#include <algorithm>
#include <charconv>
#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace {

using Arguments = std::span<char* const>;

constexpr char const* usage = "usage: usage-meter-measure SUBJECT HOW -- PROGRAM [ARGUMENT...]\n"
                              "  start              its start, and what it takes up then\n"
                              "  idle SECONDS       what it does while nothing happens\n"
                              "  titled-start, titled-idle SECONDS\n"
                              "                     the same of a program that is ready once its label holds a figure\n"
                              "  clicks COUNT       a titled program's answers to clicks\n"
                              "  windows COUNT      clicks for its usage window, until it is drawn\n"
                              "  first-start        the memory of a program without settings and of its windows\n"
                              "  replies KEY...     the memory that refreshes of these connections need for a moment\n";

int fail(std::string_view reason)
{
    std::fprintf(stderr, "usage-meter-measure: %.*s\n", static_cast<int>(reason.size()), reason.data());
    return EXIT_FAILURE;
}

int number(Arguments values)
{
    int value = 0;
    if (values.size() == 1)
        std::from_chars(values[0], values[0] + std::strlen(values[0]), value);
    return value;
}

bool measure(std::string_view how, Arguments values, Desktop& desktop, Program const& program, Samples const& samples)
{
    if (how == "first-start")
        return measurements::firstStart(desktop, program, samples);
    bool const isTitled = how.starts_with("titled-");
    if (how.ends_with("start"))
        return measurements::start(desktop, program, isTitled, samples);
    if (how.ends_with("idle"))
        return measurements::idle(desktop, program, isTitled, std::chrono::seconds(number(values)), samples);
    if (how == "clicks")
        return measurements::clicks(desktop, number(values), samples);
    if (how == "windows")
        return measurements::windows(desktop, number(values), samples);
    return how == "replies" && measurements::replies(desktop, program, values, samples);
}

}

int main(int argumentCount, char** arguments)
{
    Arguments const all { arguments, static_cast<std::size_t>(argumentCount) };
    auto const mark = std::ranges::find(all, std::string_view("--"));
    if (mark - all.begin() < 3 || all.end() - mark < 2)
        return fail(usage);

    auto const desktop = Desktop::open();
    if (!desktop)
        return fail("no bus, no display, or another panel is there");
    auto const program = Program::start(&*mark + 1);
    if (!program)
        return fail("the program does not start");
    Samples const samples(all[1]);
    Arguments const values { all.begin() + 3, mark };
    return measure(all[2], values, *desktop, *program, samples) ? EXIT_SUCCESS : fail("the program does not answer");
}
