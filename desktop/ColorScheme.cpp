// SPDX-License-Identifier: MIT
#include "desktop/ColorScheme.h"

#include <utility>

namespace {

constexpr char const* service = "org.freedesktop.portal.Desktop";
constexpr char const* path = "/org/freedesktop/portal/desktop";
constexpr char const* interface = "org.freedesktop.portal.Settings";
constexpr char const* appearanceSpace = "org.freedesktop.appearance";
constexpr char const* gnomeSpace = "org.gnome.desktop.a11y.interface";

// The number or truth of a variant that may hold another one; 0 for anything else. Moves past it.
std::uint32_t readNumber(sd_bus_message* message)
{
    char type = 0;
    char const* contents = nullptr;
    sd_bus_message_peek_type(message, &type, &contents);
    std::string_view const held = type == SD_BUS_TYPE_VARIANT ? contents : "";
    std::uint32_t number = 0;
    int truth = 0;
    if (held == "u") {
        sd_bus_message_read(message, "v", "u", &number);
    } else if (held == "b") {
        sd_bus_message_read(message, "v", "b", &truth);
    } else if (held == "v") {
        sd_bus_message_enter_container(message, SD_BUS_TYPE_VARIANT, "v");
        number = readNumber(message);
        sd_bus_message_exit_container(message);
    } else {
        sd_bus_message_skip(message, "v");
    }
    return number + static_cast<std::uint32_t>(truth);
}

}

ColorScheme::ColorScheme(Bus& bus, std::function<void(platform::Appearance)> observer)
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

// Namespaces with their settings: a{sa{sv}}. Where the reply is an error or of another shape, what came before counts.
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
            accept(space, key, readNumber(reply));
            sd_bus_message_exit_container(reply);
        }
        sd_bus_message_exit_container(reply);
        sd_bus_message_exit_container(reply);
    }
    tell();
}

void ColorScheme::settingChanged(sd_bus_message* signal)
{
    char const* space = nullptr;
    char const* key = nullptr;
    if (sd_bus_message_has_signature(signal, "ssv") <= 0 || sd_bus_message_read(signal, "ss", &space, &key) < 0)
        return;
    accept(space, key, readNumber(signal));
    tell();
}

// The portal's numbers: a scheme of 1 prefers dark, 2 light; a contrast of 1 prefers a high one; 0 has no preference.
void ColorScheme::accept(std::string_view space, std::string_view key, std::uint32_t value)
{
    if (space == appearanceSpace && key == "color-scheme")
        isDark_ = value == 1;
    if (space == appearanceSpace && key == "contrast")
        isHighContrast_ = value == 1;
    if (space == gnomeSpace && key == "high-contrast")
        isHighContrastInGnome_ = value == 1;
}

void ColorScheme::tell()
{
    auto const now = appearance();
    if (std::exchange(told_, now) != now)
        observer_(now);
}

platform::Appearance ColorScheme::appearance() const
{
    if (isHighContrast_.value_or(isHighContrastInGnome_))
        return isDark_ ? platform::Appearance::HighContrastDark : platform::Appearance::HighContrastLight;
    return isDark_ ? platform::Appearance::Dark : platform::Appearance::Light;
}
