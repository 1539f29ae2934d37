// SPDX-License-Identifier: MIT
#include "desktop/ColorScheme.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <utility>

namespace {

constexpr char const* service = "org.freedesktop.portal.Desktop";
constexpr char const* path = "/org/freedesktop/portal/desktop";
constexpr char const* interface = "org.freedesktop.portal.Settings";
constexpr char const* appearanceSpace = "org.freedesktop.appearance";
constexpr char const* gnomeSpace = "org.gnome.desktop.a11y.interface";

// Converts the portal's red, green and blue, from 0 to 1. Values outside that range mean that no colour is chosen.
std::optional<platform::Color> colorOf(std::array<double, 3> const& parts)
{
    if (!std::ranges::all_of(parts, [](double part) { return part >= 0 && part <= 1; }))
        return std::nullopt;
    auto const toByte = [](double part) { return static_cast<std::uint8_t>(std::lround(part * 255)); };
    return platform::Color { toByte(parts[0]), toByte(parts[1]), toByte(parts[2]) };
}

}

// Reads a variant, which may contain another variant, and moves past it.
ColorScheme::Setting ColorScheme::readSetting(sd_bus_message* message)
{
    char type = 0;
    char const* contents = nullptr;
    sd_bus_message_peek_type(message, &type, &contents);
    std::string_view const held = type == SD_BUS_TYPE_VARIANT ? contents : "";
    Setting setting;
    if (held == "u") {
        sd_bus_message_read(message, "v", "u", &setting.emplace<std::uint32_t>());
    } else if (held == "b") {
        int truth = 0;
        sd_bus_message_read(message, "v", "b", &truth);
        setting = static_cast<std::uint32_t>(truth);
    } else if (held == "(ddd)") {
        std::array<double, 3> parts {};
        sd_bus_message_read(message, "v", "(ddd)", &parts[0], &parts[1], &parts[2]);
        if (auto const color = colorOf(parts))
            setting = *color;
    } else if (held == "v") {
        sd_bus_message_enter_container(message, SD_BUS_TYPE_VARIANT, "v");
        setting = readSetting(message);
        sd_bus_message_exit_container(message);
    } else {
        sd_bus_message_skip(message, "v");
    }
    return setting;
}

ColorScheme::ColorScheme(Bus& bus, std::function<void(Look const&)> observer)
    : bus_(bus)
    , observer_(std::move(observer))
    , changes_(bus.listen(
          service, path, interface, "SettingChanged", [this](sd_bus_message* signal) { settingChanged(signal); }))
    , portal_(bus.observeOwner(service, [this](std::string const& owner) {
        if (!owner.empty())
            read();
    }))
{
    read();
}

void ColorScheme::read()
{
    auto message = bus_.methodCall(service, path, interface, "ReadAll");
    if (message)
        sd_bus_message_append(message.get(), "as", 2, appearanceSpace, gnomeSpace);
    reading_ = bus_.call(std::move(message), [this](sd_bus_message* reply) { acceptAll(reply); });
}

// The reply maps namespaces to their settings: a{sa{sv}}. Everything before an error or an unexpected type is used.
void ColorScheme::acceptAll(sd_bus_message* reply)
{
    if (sd_bus_message_has_signature(reply, "a{sa{sv}}") <= 0)
        return;
    sd_bus_message_enter_container(reply, SD_BUS_TYPE_ARRAY, "{sa{sv}}");
    while (sd_bus_message_enter_container(reply, SD_BUS_TYPE_DICT_ENTRY, "sa{sv}") > 0) {
        char const* space = "";
        sd_bus_message_read(reply, "s", &space);
        sd_bus_message_enter_container(reply, SD_BUS_TYPE_ARRAY, "{sv}");
        while (sd_bus_message_enter_container(reply, SD_BUS_TYPE_DICT_ENTRY, "sv") > 0) {
            char const* key = "";
            sd_bus_message_read(reply, "s", &key);
            accept(space, key, readSetting(reply));
            sd_bus_message_exit_container(reply);
        }
        sd_bus_message_exit_container(reply);
        sd_bus_message_exit_container(reply);
    }
    report();
}

void ColorScheme::settingChanged(sd_bus_message* signal)
{
    char const* space = nullptr;
    char const* key = nullptr;
    if (sd_bus_message_has_signature(signal, "ssv") <= 0 || sd_bus_message_read(signal, "ss", &space, &key) < 0)
        return;
    accept(space, key, readSetting(signal));
    report();
}

// In the portal, scheme 1 prefers dark and 2 light, contrast 1 prefers high contrast, and 0 means no preference.
void ColorScheme::accept(std::string_view space, std::string_view key, Setting const& value)
{
    bool const isOne = value == Setting(std::uint32_t { 1 });
    if (space == appearanceSpace && key == "color-scheme")
        isDark_ = isOne;
    if (space == appearanceSpace && key == "contrast")
        isHighContrast_ = isOne;
    if (space == gnomeSpace && key == "high-contrast")
        isHighContrastInGnome_ = isOne;
    auto const* const color = std::get_if<platform::Color>(&value);
    if (space == appearanceSpace && key == "accent-color")
        accent_ = color ? std::optional(*color) : std::nullopt;
}

void ColorScheme::report()
{
    auto const now = look();
    if (std::exchange(reported_, now) != now)
        observer_(now);
}

Look ColorScheme::look() const
{
    if (isHighContrast_.value_or(isHighContrastInGnome_))
        return { isDark_ ? platform::Appearance::HighContrastDark : platform::Appearance::HighContrastLight, accent_ };
    return { isDark_ ? platform::Appearance::Dark : platform::Appearance::Light, accent_ };
}
