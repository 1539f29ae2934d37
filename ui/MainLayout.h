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

/// Sets the outlets' initial state and stored choices, keeps the bound ones in sync with the settings, and shows what
/// follows from the fields.
class MainLayout {
public:
    /// Formats numbers in texts for the locale, which has an ICU name.
    MainLayout(Outlets& outlets, platform::Bundle const& bundle, platform::UserDefaults& userDefaults,
        std::string const& numberLocale = "en_US");

    /// Connects most controls' actions to the controller, and adds the menu's commands.
    void wire(AppDelegate& controller);

private:
    void showInitialState();
    void fillChoices(std::string const& numberLocale);
    void bindSettings(platform::UserDefaults& userDefaults);
    void followFields(std::string const& numberLocale);
    void fillMenu(AppDelegate& controller);

    Outlets& outlets_;
    platform::Bundle const& bundle_;
    std::vector<platform::Subscription> bindings_;
};
