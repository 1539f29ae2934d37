// SPDX-License-Identifier: MIT
#pragma once

#include "desktop/Bus.h"
#include "desktop/Look.h"

#include <cstdint>
#include <functional>
#include <optional>
#include <string_view>
#include <variant>

/// Follows the desktop's preference for light or dark windows, high contrast and an accent colour, as reported by the
/// settings portal (org.freedesktop.portal.Settings). If the portal does not support contrast, GNOME's own setting is
/// used. Reports nothing until there is a portal. Main thread only.
class ColorScheme final {
public:
    /// Queries the portal without blocking, and reports the current preference and every change.
    ColorScheme(Bus& bus, std::function<void(Look const&)> observer);

private:
    /// The value of a setting, if it has a supported type. Booleans are stored as numbers.
    using Setting = std::variant<std::monostate, std::uint32_t, platform::Color>;

    static Setting readSetting(sd_bus_message* message);
    void read();
    void acceptAll(sd_bus_message* reply);
    void settingChanged(sd_bus_message* signal);
    void accept(std::string_view space, std::string_view key, Setting const& value);
    void report();
    Look look() const;

    Bus& bus_;
    std::function<void(Look const&)> observer_;
    BusSlot changes_;
    BusSlot portal_;
    BusSlot reading_;
    bool isDark_ = false;
    std::optional<bool> isHighContrast_;
    bool isHighContrastInGnome_ = false;
    std::optional<platform::Color> accent_;
    std::optional<Look> reported_;
};
