// SPDX-License-Identifier: MIT
// The controller's part in following the desktop: its appearance, waking from sleep, and clock changes.
#include "app/AppDelegate.h"
#include "app/Outlets.h"
#include "platform/Bundle.h"
#include "platform/Platform.h"

void AppDelegate::updateDarkAppearance()
{
    // Used if the bundle has no colours.
    constexpr platform::Color fixedBackground { 81, 180, 63 };
    auto& window = outlets_.window;
    window.backgroundColor.set(
        platform_.bundle.namedColor("mainBackground", window.effectiveAppearance.get()).value_or(fixedBackground));
}

void AppDelegate::fileNotifications()
{
    observations_.push_back(platform_.runLoop.observeWake([this] { receiveWakeNote(); }));
    observations_.push_back(platform_.runLoop.observeClockChange([this] { receiveClockNote(); }));
    observations_.push_back(
        outlets_.window.effectiveAppearance.observeChanges([this](platform::Appearance) { updateDarkAppearance(); }));
}
