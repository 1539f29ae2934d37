// SPDX-License-Identifier: MIT
#pragma once

#include "platform/Property.h"

#include <string>
#include <vector>

namespace platform {
class Bundle;
class UserDefaults;
}
class AppDelegate;
struct Outlets;

/// Gives the outlets their first state and the stored choices, and keeps the bound ones in step with the settings.
class MainLayout {
public:
    /// The locale, as ICU names it, is that of the numbers in texts.
    MainLayout(Outlets& outlets, platform::Bundle const& bundle, platform::UserDefaults& userDefaults,
        std::string const& numberLocale = "en_US");

    /// Lets the controls send their actions to the controller, and adds the menu's commands.
    void wire(AppDelegate& controller);

private:
    void fillMenu(AppDelegate& controller);

    Outlets& outlets_;
    platform::Bundle const& bundle_;
    std::vector<platform::Subscription> bindings_;
};
