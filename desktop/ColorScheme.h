// SPDX-License-Identifier: MIT
#pragma once

#include "desktop/Bus.h"
#include "desktop/Look.h"

#include <functional>
#include <optional>
#include <string_view>
#include <variant>

/// Follows the desktop's preference for light or dark windows, for high contrast and for an accent colour, as the
/// settings portal reports them (org.freedesktop.portal.Settings). Where a portal does not know of contrast, GNOME's
/// own setting counts. Nothing is told until there is a portal. Main thread only.
class ColorScheme final {
public:
    /// Asks at once and waits for nobody; tells the present preference and every later one.
    ColorScheme(Bus& bus, std::function<void(Look const&)> observer);

private:
    /// What a setting holds, as far as it matters here. Truths are numbers.
    using Setting = std::variant<std::monostate, std::uint32_t, platform::Color>;

    static Setting readSetting(sd_bus_message* message);
    void read();
    void acceptAll(sd_bus_message* reply);
    void settingChanged(sd_bus_message* signal);
    void accept(std::string_view space, std::string_view key, Setting const& value);
    void tell();
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
    std::optional<Look> told_;
};
