// SPDX-License-Identifier: MIT
#pragma once

#include "desktop/Bus.h"
#include "platform/Color.h"

#include <functional>
#include <optional>
#include <string_view>

/// Follows the desktop's preference for light or dark windows and for high contrast, as the settings portal tells it
/// (org.freedesktop.portal.Settings). Where a portal does not know of contrast, GNOME's own setting counts. Nothing is
/// told until there is a portal. Main thread only.
class ColorScheme final {
public:
    /// Asks at once and waits for nobody; tells the present preference and every later one.
    ColorScheme(Bus& bus, std::function<void(platform::Appearance)> observer);

private:
    void read();
    void acceptAll(sd_bus_message* reply);
    void settingChanged(sd_bus_message* signal);
    void accept(std::string_view space, std::string_view key, std::uint32_t value);
    void tell();
    platform::Appearance appearance() const;

    Bus& bus_;
    std::function<void(platform::Appearance)> observer_;
    BusSlot changes_;
    BusSlot portal_;
    BusSlot reading_;
    bool isDark_ = false;
    std::optional<bool> isHighContrast_;
    bool isHighContrastInGnome_ = false;
    std::optional<platform::Appearance> told_;
};
