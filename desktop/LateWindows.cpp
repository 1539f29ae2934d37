// SPDX-License-Identifier: MIT
#include "desktop/LateWindows.h"

#include "app/Outlets.h"
#include "desktop/Display.h"

#include <cstdio>
#include <utility>

namespace {

bool canConnect(DesktopRunLoop& loop)
{
    return Display::connect(loop, [] { }) != nullptr;
}

}

LateWindows::LateWindows(WindowsContext context, std::filesystem::path const& library)
    : context_(std::move(context))
    , library_(library)
{
    for (auto* const window : windowsOf(context_.outlets))
        wishes_.push_back(window->visible.observeChanges([this, window](bool visible) {
            if (visible)
                loadFor(*window);
        }));
}

LateWindows::~LateWindows() = default;

void LateWindows::loadFor(platform::Window& window)
{
    if (!load())
        context_.runLoop.perform([&window] { window.orderOut(); });
}

Windows* LateWindows::load()
{
    if (windows_)
        return windows_.get();
    // Without a display, the toolkit would end the program.
    if (!canConnect(context_.runLoop)) {
        std::fprintf(stderr, "usage-meter: cannot connect to display %s\n", Display::name().c_str());
        return nullptr;
    }
    auto const make = library_.find<MakeWindows>(makeWindowsName);
    if (!make)
        return nullptr;
    wishes_.clear();
    make(context_, windows_);
    windows_->setLook(look_);
    context_.runLoop.setOuter(*windows_);
    return windows_.get();
}

void LateWindows::setLook(Look const& look)
{
    look_ = look;
    for (auto* const window : windowsOf(context_.outlets))
        window->effectiveAppearance.set(look.appearance);
    if (windows_)
        windows_->setLook(look);
}
