// SPDX-License-Identifier: MIT
#pragma once

#include "bench/parts/Benchmarks.h"
#include "demo/PeerBus.h"
#include "desktop/DBusMenu.h"
#include "desktop/StatusNotifierItem.h"

/// A menu whose lines, submenus included, a panel has requested. The panel receives the menu's signals but is not
/// measured: it reads only when told to.
class ListedMenu {
public:
    /// Runs the menu in this main loop.
    ListedMenu(platform::Menu& model, DesktopRunLoop& loop)
        : loop_(loop)
        , peers_(loop, panelLoop_)
        , menu_(model, path, DBusMenu::TextDirection::LeftToRight, peers_.program)
        , reports_(peers_.panel.listen(nullptr, path, interface, "ItemsPropertiesUpdated",
              [this](sd_bus_message* signal) { countLines(signal); }))
    {
        bool isListed = false;
        auto message = peers_.panel.methodCall(nullptr, path, interface, "GetLayout");
        sd_bus_message_append(message.get(), "iias", 0, -1, 0);
        auto const call = peers_.panel.call(std::move(message),
            [&isListed](sd_bus_message* reply) { isListed = sd_bus_message_is_method_error(reply, nullptr) == 0; });
        peers_.settle();
        require(isListed, "the panel has the menu");
    }

    Bus& bus() { return peers_.program; }

    /// Runs the update that is queued for the end of the turn, until it has been sent to the panel.
    void runQueued() { PeerBus::runDue(loop_); }

    /// Lets the panel read occasionally, before the channel fills up. This is not counted in the benchmark's time.
    void letPanelRead(benchmark::State& state)
    {
        if (++turns_ % turnsOnTheWay != 0)
            return;
        state.PauseTiming();
        peers_.settle();
        state.ResumeTiming();
    }

    /// The number of reports of a line's new properties.
    std::size_t reportedLines()
    {
        peers_.settle();
        return reportedLines_;
    }

private:
    static constexpr char const* path = StatusNotifierItem::menuPath;
    static constexpr char const* interface = "com.canonical.dbusmenu";
    static constexpr std::size_t turnsOnTheWay = 32;

    void countLines(sd_bus_message* signal)
    {
        sd_bus_message_enter_container(signal, SD_BUS_TYPE_ARRAY, "(ia{sv})");
        for (; sd_bus_message_at_end(signal, 0) == 0; ++reportedLines_)
            sd_bus_message_skip(signal, "(ia{sv})");
    }

    DesktopRunLoop& loop_;
    DesktopRunLoop panelLoop_;
    PeerBus peers_;
    DBusMenu menu_;
    BusSlot reports_;
    std::size_t reportedLines_ = 0;
    std::size_t turns_ = 0;
};
