// SPDX-License-Identifier: MIT
#include "platform/Binding.h"

namespace platform {

namespace {

void show(CheckBox& control, Value const* value)
{
    if (auto const* const on = value ? value->as<bool>() : nullptr)
        control.on.set(*on);
}

void show(PopUpButton& control, Value const* value)
{
    auto const* const index = value ? value->as<std::int64_t>() : nullptr;
    if (index && *index >= 0 && *index < static_cast<std::int64_t>(control.items.get().size()))
        control.indexOfSelectedItem.set(static_cast<int>(*index));
}

void show(ComboBox& control, Value const* value)
{
    auto const* const text = value ? value->as<std::string>() : nullptr;
    control.text.set(text ? *text : std::string());
}

void show(Window& window, Value const* value)
{
    if (auto const* const place = value ? value->as<std::string>() : nullptr)
        window.place.set(*place);
}

template <typename T, typename Control>
Subscription bindControl(UserDefaults& defaults, std::string const& key, Control& control)
{
    show(control, defaults.value(key));
    control.store = [&defaults, key](T value) { defaults.set(key, Value(std::move(value))); };
    return defaults.observeChanges(key, [&control](Value const* value) { show(control, value); });
}

}

Subscription bindToSetting(UserDefaults& defaults, std::string const& key, CheckBox& control)
{
    return bindControl<bool>(defaults, key, control);
}

Subscription bindToSetting(UserDefaults& defaults, std::string const& key, PopUpButton& control)
{
    return bindControl<int>(defaults, key, control);
}

Subscription bindToSetting(UserDefaults& defaults, std::string const& key, ComboBox& control)
{
    return bindControl<std::string>(defaults, key, control);
}

Subscription bindToSetting(UserDefaults& defaults, std::string const& key, Window& window)
{
    return bindControl<std::string>(defaults, key, window);
}

}
