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
    observations_.push_back(outlets_.usageLimit.text.observe([this](std::string const&) { showCapReading(); }));
    observations_.push_back(outlets_.usageID.text.observeChanges([this](std::string const&) { showKeyStatus(); }));
    observations_.push_back(outlets_.tarvoUsageKeysComboBox.text.observe(
        [this](std::string const& entry) { outlets_.removeKeyButton.enabled.set(!entry.empty()); }));
    observations_.push_back(
        usageStatusItem_.title.observe([this](std::string const& title) { outlets_.headline.text.set(title); }));
    observations_.push_back(outlets_.statusBarDropdown.indexOfSelectedItem.observe([this](int index) {
        auto const& choices = outlets_.statusBarDropdown.items.get();
        bool const isChoice = index >= 0 && static_cast<std::size_t>(index) < choices.size();
        outlets_.headlineCaption.text.set(isChoice ? choices[static_cast<std::size_t>(index)] : std::string());
    }));
    observations_.push_back(outlets_.monitorWindow.visible.observe([this](bool visible) { keepDatesRight(visible); }));
    // Other programs can change it too.
    observations_.push_back(outlets_.window.observeFrontRequests([this] { showStartAtLogin(); }));
}
