// SPDX-License-Identifier: MIT
#include "bench/programs/Desktop.h"

#include <array>
#include <utility>

std::unique_ptr<Desktop> Desktop::open()
{
    auto panel = Panel::open();
    auto screen = Screen::open();
    auto tray = screen ? OlderTray::open(*screen) : nullptr;
    if (!panel || !tray)
        return {};
    return std::unique_ptr<Desktop>(new Desktop(std::move(panel), std::move(screen), std::move(tray)));
}

Desktop::Desktop(std::unique_ptr<Panel> panel, std::unique_ptr<Screen> screen, std::unique_ptr<OlderTray> tray)
    : panel_(std::move(panel))
    , screen_(std::move(screen))
    , tray_(std::move(tray))
{
}

bool Desktop::waitFor(std::function<bool()> const& condition, Clock::duration bound)
{
    auto const end = Clock::now() + bound;
    while (!condition()) {
        if (panel_->process() || tray_->process())
            continue;
        auto const left = std::chrono::ceil<std::chrono::milliseconds>(end - Clock::now()).count();
        if (left <= 0)
            return false;
        std::array awaited { panel_->awaited(), pollfd { tray_->descriptor(), POLLIN, 0 } };
        poll(awaited.data(), awaited.size(), static_cast<int>(left));
    }
    return true;
}

void Desktop::rest(Clock::duration time)
{
    waitFor([] { return false; }, time);
}
