// SPDX-License-Identifier: MIT
#include "bench/programs/Measurements.h"
#include "bench/programs/ProcessFigures.h"

#include <algorithm>
#include <functional>

using namespace std::chrono_literals;

namespace measurements {

namespace {

// Allows for a slow provider.
constexpr auto patience = 180s;
// Long enough for the panel to read the changes of a refresh, and for the program to free its memory.
constexpr auto calm = 1500ms;
constexpr auto pace = 1ms;
// A child without this name has not executed the helper yet and still shows the program's own memory.
constexpr std::string_view helperName = "usage-meter-fet";

using Predicate = std::function<bool(MenuLine const&)>;

MenuLine const* find(MenuLine const& menu, Predicate const& isWanted)
{
    for (auto const& line : menu.lines) {
        if (isWanted(line))
            return &line;
        if (auto const* const found = find(line, isWanted))
            return found;
    }
    return nullptr;
}

bool isUpdate(MenuLine const& line) { return line.label == "Update Now"; }

bool isUsageWindow(MenuLine const& line) { return line.label == "Usage Window"; }

bool hasChoice(MenuLine const& menu) { return std::ranges::any_of(menu.lines, &MenuLine::isChecked); }

// Opens the menu and clicks a line. Returns nothing if there is no such line.
std::optional<Clock::time_point> click(Panel& panel, Predicate const& isWanted)
{
    auto const menu = panel.openMenu();
    auto const* const line = menu ? find(*menu, isWanted) : nullptr;
    if (!line)
        return std::nullopt;
    auto const begin = Clock::now();
    panel.click(*line);
    return begin;
}

// Clicks the connection that is not selected.
std::optional<Clock::time_point> clickOther(Panel& panel)
{
    auto const menu = panel.openMenu();
    auto const* const choice = menu ? find(*menu, hasChoice) : nullptr;
    if (!choice)
        return std::nullopt;
    auto const other = std::ranges::find_if(choice->lines, [](MenuLine const& line) { return !line.isChecked; });
    if (other == choice->lines.end())
        return std::nullopt;
    auto const begin = Clock::now();
    panel.click(*other);
    return begin;
}

bool waitForLabel(Desktop& desktop, bool withFigure)
{
    auto const& panel = desktop.panel();
    return desktop.waitFor(
        [&, before = panel.reportedLabels()] {
            return panel.reportedLabels() > before && hasDigit(panel.label()) == withFigure;
        },
        patience);
}

bool openMenu(Desktop& desktop, Samples const& samples)
{
    auto const begin = Clock::now();
    if (!desktop.panel().openMenu())
        return false;
    samples.add("menu open to its content", Clock::now() - begin);
    return true;
}

bool update(Desktop& desktop, Samples const& samples)
{
    auto const begin = click(desktop.panel(), isUpdate);
    if (!begin || !waitForLabel(desktop, false))
        return false;
    samples.add("click to waiting title", Clock::now() - *begin);
    if (!waitForLabel(desktop, true))
        return false;
    samples.add("update now to title", Clock::now() - *begin);
    return true;
}

bool switchConnection(Desktop& desktop, Samples const& samples)
{
    auto const begin = clickOther(desktop.panel());
    if (!begin || !waitForLabel(desktop, true))
        return false;
    samples.add("cached switch", Clock::now() - *begin);
    return true;
}

// Ensures that both connections are cached.
bool visitBoth(Desktop& desktop)
{
    return clickOther(desktop.panel()) && waitForLabel(desktop, true) && clickOther(desktop.panel())
        && waitForLabel(desktop, true);
}

// Waits for the outcome of a refresh, even a failure. Returns the helper's peak memory.
std::optional<long> peakOfHelper(Desktop& desktop, pid_t program)
{
    auto const& panel = desktop.panel();
    // The first new label is the waiting state's.
    auto const isOver = [&, before = panel.reportedLabels()] { return panel.reportedLabels() >= before + 2; };
    auto const end = Clock::now() + patience;
    long peak = 0;
    while (!desktop.waitFor(isOver, pace)) {
        if (Clock::now() > end)
            return std::nullopt;
        for (auto const helper : processFigures::children(program, helperName))
            peak = std::max(peak, processFigures::peakMemory(helper));
    }
    return peak;
}

bool waitForWindows(Desktop& desktop, std::size_t count, decltype(&Screen::openWindows) windows = &Screen::drawnWindows)
{
    auto const end = Clock::now() + patience;
    while (!desktop.waitFor([&] { return (desktop.screen().*windows)().size() == count; }, pace)) {
        if (Clock::now() > end)
            return false;
    }
    return true;
}

}

bool clicks(Desktop& desktop, int count, Samples const& samples)
{
    if (!settle(desktop, true) || !visitBoth(desktop))
        return false;
    for (int i = 0; i < count; ++i) {
        desktop.rest(calm);
        if (!openMenu(desktop, samples) || !update(desktop, samples))
            return false;
        desktop.rest(calm);
        if (!switchConnection(desktop, samples))
            return false;
    }
    return true;
}

bool replies(Desktop& desktop, Program const& program, std::span<char* const> keys, Samples const& samples)
{
    if (!settle(desktop, true))
        return false;
    std::optional<long> usualHelper;
    for (std::string_view const key : keys) {
        processFigures::resetPeakMemory(program.id());
        long const before = processFigures::residentMemory(program.id());
        if (!click(desktop.panel(), [key](MenuLine const& line) { return line.label.ends_with(key); }))
            return false;
        auto const helper = peakOfHelper(desktop, program.id());
        if (!helper)
            return false;
        desktop.rest(calm);
        long const growth = processFigures::peakMemory(program.id()) - before;
        long const helperGrowth = *helper - usualHelper.value_or(*helper);
        usualHelper = usualHelper.value_or(*helper);
        samples.addMemory("memory growth on any reply", growth);
        samples.addMemory("memory growth of the helper on any reply", helperGrowth);
        std::cerr << key << ": " << growth << " kB, the helper " << helperGrowth << " kB\n";
    }
    return true;
}

bool windows(Desktop& desktop, int count, Samples const& samples)
{
    if (!settle(desktop, true))
        return false;
    for (int i = 0; i <= count; ++i) {
        auto const begin = click(desktop.panel(), isUsageWindow);
        if (!begin || !waitForWindows(desktop, 1))
            return false;
        samples.add(i == 0 ? "first usage window, click to drawn" : "later usage window, click to drawn",
            Clock::now() - *begin);
        desktop.screen().closeWindows();
        if (!waitForWindows(desktop, 0))
            return false;
        desktop.rest(calm);
    }
    return true;
}

bool firstStart(Desktop& desktop, Program const& program, Samples const& samples)
{
    // The preferences window and its sheet open by themselves. Without a window manager they cover each other.
    auto const windows = &Screen::openWindows;
    if (!settle(desktop, false) || !waitForWindows(desktop, 2, windows) || !click(desktop.panel(), isUsageWindow)
        || !waitForWindows(desktop, 3, windows))
        return false;
    desktop.rest(calm);
    samples.addMemory("PSS with all windows opened once", processFigures::proportionalMemory(program.id()));
    samples.addMemory("private memory with all windows opened once", processFigures::privateMemory(program.id()));
    return true;
}

}
