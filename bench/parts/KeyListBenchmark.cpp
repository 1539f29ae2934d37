// SPDX-License-Identifier: MIT
#include "bench/parts/Benchmarks.h"
#include "bench/parts/ListedMenu.h"
#include "bench/parts/RunningCore.h"

#include <array>

namespace {

std::vector<std::string> entriesOf(std::size_t count)
{
    std::vector<std::string> entries { RunningCore::home };
    while (entries.size() < count)
        entries.push_back("Connection " + std::to_string(entries.size()) + " - key" + std::to_string(entries.size()));
    return entries;
}

void loadKeys(benchmark::State& state, std::size_t count)
{
    SettledCore settled(entriesOf(count));
    auto const& outlets = settled.core.outlets;
    require(outlets.tarvoUsageKeysComboBox.items.get().size() == count, "all entries are in the list");
    require(outlets.connectionMenu.items().size() == (count >= 2 ? count : 0), "a choice has its submenu");
    while (state.KeepRunning()) {
        settled.core.controller.loadKeys();
        benchmark::ClobberMemory();
    }
}

// Picks another connection: the list is reloaded, the mark moves to another line, and the panel is notified.
void loadKeysAndUpdateMenu(benchmark::State& state, std::size_t count)
{
    SettledCore settled(entriesOf(count));
    auto& comboBox = settled.core.outlets.tarvoUsageKeysComboBox;
    DesktopRunLoop loop;
    ListedMenu menu(settled.core.outlets.dropDownMenu, loop);
    std::size_t turns = 0;
    while (state.KeepRunning()) {
        comboBox.selectItemAtIndex(++turns % 2 == 0 ? 0 : count - 1);
        settled.core.controller.loadKeys();
        menu.runQueued();
        menu.letPanelRead(state);
    }
    require(menu.reportedLines() == (count >= 2 ? 2 * turns : 0), "the mark's old line and its new one are reported");
}

// A refresh changes the first group of lines but not the submenu.
void updateMenuAfterRefresh(benchmark::State& state, std::size_t count)
{
    SettledCore settled(entriesOf(count));
    DesktopRunLoop loop;
    ListedMenu menu(settled.core.outlets.dropDownMenu, loop);
    struct Line {
        std::shared_ptr<platform::MenuItem> item;
        std::array<std::string, 2> titles;
    };
    std::vector<Line> lines;
    for (auto const& item : settled.core.outlets.dropDownMenu.items()) {
        if (item->isSeparator)
            break;
        if (!item->hidden.get())
            lines.push_back({ item, { item->title.get() + "0", item->title.get() } });
    }
    require(lines.size() == 7, "the first group has seven lines");
    std::size_t turn = 0;
    while (state.KeepRunning()) {
        for (auto const& line : lines)
            line.item->title.set(line.titles.at(turn % 2));
        ++turn;
        menu.runQueued();
        menu.letPanelRead(state);
    }
    require(menu.reportedLines() == lines.size() * turn, "all lines of the first group are reported");
}

}

void addKeyListBenchmarks()
{
    for (std::size_t const count : { 1UL, 10UL, 100UL, 1'000UL, 10'000UL }) {
        auto const size = ", " + std::to_string(count) + " entries/ours";
        add("load keys" + size, [count](benchmark::State& state) { loadKeys(state, count); });
        add("load keys and update menu" + size,
            [count](benchmark::State& state) { loadKeysAndUpdateMenu(state, count); });
    }
    add("menu update after a refresh/ours", [](benchmark::State& state) { updateMenuAfterRefresh(state, 2); });
    add("menu update after a refresh, 10000 entries/ours",
        [](benchmark::State& state) { updateMenuAfterRefresh(state, 10'000); });
}
