// SPDX-License-Identifier: MIT
#include "bench/parts/Benchmarks.h"
#include "bench/parts/ListedMenu.h"
#include "bench/parts/MainLoop.h"
#include "bench/parts/RunningCore.h"
#include "desktop/StatusNotifierItem.h"
#include "platform/ThreadQueues.h"

namespace {

using namespace std::chrono_literals;

// Users pick a connection only occasionally, so nothing is left in the processor's caches.
constexpr auto betweenClicks = 200ms;
constexpr int clicks = 20;
constexpr char const* homeFigure = "57.3GB";
constexpr char const* cottageFigure = "5.2GB";

/// The program without windows, connected to a panel without a bus, with the reports of both connections cached.
struct RunningProgram {
    RunningProgram()
    {
        waitFor(homeFigure);
        pick(1);
        waitFor(cottageFigure);
        pick(0);
        waitFor(homeFigure);
        require(core.provider.requests() == 2, "both connections' reports are cached");
        mainLoop.runUntil([this] { return core.outlets.usageBar.opacity.at(mainLoop.runLoop.uptime()) == 1.0; });
    }

    void pick(std::size_t connection)
    {
        // Held, because the click removes the line.
        auto const line = core.outlets.connectionMenu.items().at(connection);
        line->userClicked();
    }

    void waitFor(std::string_view title)
    {
        mainLoop.runUntil([&] { return core.title() == title; });
        menu.runQueued();
    }

    MainLoop mainLoop;
    platform::ThreadQueues queues;
    RunningCore core { mainLoop.runLoop, queues, { RunningCore::home, RunningCore::cottage } };
    ListedMenu menu { core.outlets.dropDownMenu, mainLoop.runLoop };
    /// The panel has not shown the item yet, so nothing is drawn.
    IconDrawer drawer { "", mainLoop.runLoop, queues };
    StatusNotifierItem item { core.controller.usageStatusItem(), {}, drawer, menu.bus(), {} };
};

// Measures from the click to the menu. The provider answers at once; everything else is as in the program.
void refresh(benchmark::State& state)
{
    RunningProgram program;
    int const requestsBefore = program.core.provider.requests();
    int refreshes = 0;
    while (state.KeepRunning()) {
        program.core.controller.updateButton();
        program.waitFor(homeFigure);
        program.menu.letPanelRead(state);
        ++refreshes;
    }
    require(program.core.provider.requests() == requestsBefore + refreshes, "each refresh asks the provider");
}

void switchConnection(benchmark::State& state)
{
    RunningProgram program;
    int const requestsBefore = program.core.provider.requests();
    bool isAtHome = true;
    while (state.KeepRunning()) {
        state.PauseTiming();
        program.mainLoop.rest(betweenClicks);
        state.ResumeTiming();
        program.pick(isAtHome ? 1 : 0);
        program.waitFor(isAtHome ? cottageFigure : homeFigure);
        program.menu.letPanelRead(state);
        isAtHome = !isAtHome;
    }
    require(program.core.provider.requests() == requestsBefore, "a cached report is not asked for");
}

// The minimum for every refresh and every switch: starting a thread, and returning to the main one.
void hop(benchmark::State& state)
{
    MainLoop mainLoop;
    platform::ThreadQueues queues;
    while (state.KeepRunning()) {
        bool isBack = false;
        bool const started = queues.async(
            "usage_background", [&mainLoop, &isBack] { mainLoop.runLoop.perform([&isBack] { isBack = true; }); });
        require(started, "there is room for a thread");
        mainLoop.runUntil([&isBack] { return isBack; });
    }
    require(queues.waitUntilIdle(std::chrono::seconds(10)), "threads end");
}

}

void addRefreshBenchmarks()
{
    add("refresh without the network/ours", &refresh);
    add("cached switch without the bus/ours", &switchConnection)->Iterations(clicks);
    add("thread hop/bare", &hop);
}
