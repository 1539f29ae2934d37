// SPDX-License-Identifier: MIT
#pragma once

#include "platform/Color.h"
#include "platform/Date.h"
#include "platform/Opacity.h"
#include "platform/Property.h"
#include "platform/Sender.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace platform {

class Button {
public:
    Property<std::string> title;
    Property<bool> highlighted { false };
    /// Empty means the desktop's own button colour.
    Property<std::optional<Color>> bezelColor;
    Property<bool> hidden { false };
    Property<bool> enabled { true };
    int tag = 0;
    Action action;

    void userClicked() { send(action, this); }
};

/// A two-state button. A state set by the program is only shown; one set by the user is also stored and triggers the
/// action.
class CheckBox {
public:
    Property<bool> on { false };
    Property<bool> hidden { false };
    Property<std::string> title;
    /// Empty means the desktop's own text colour.
    Property<std::optional<Color>> titleColor;

    std::function<void(bool)> store;
    std::function<void()> action;

    void userToggled(bool nowOn);
};

/// A button that shows one of its items and lets the user pick another.
class PopUpButton {
public:
    Property<std::vector<std::string>> items;
    Property<int> indexOfSelectedItem { 0 };

    std::function<void(int)> store;
    std::function<void()> action;

    /// Sends the action even if the same item is picked again.
    void userSelected(int index);
};

/// A line of text, read-only or editable.
class TextField {
public:
    Property<std::string> text;
    Property<std::string> toolTip;
    Property<bool> hidden { false };
    Opacity opacity { 1.0 };

    /// Takes the whole text as edited by the user. Line breaks, tabs and other control characters are removed.
    void userTyped(std::string_view typed);
};

/// Lets the user pick a month between two dates. It holds a whole date but shows only the month.
class DatePicker {
public:
    Property<Date> minDate {};
    Property<Date> maxDate {};
    Property<Date> dateValue {};
    /// The ICU name of the locale whose calendar and words are used.
    std::string locale = "en_US";
    Property<bool> hidden { false };

    std::function<void()> action;

    void userPicked(Date date);
};

/// Shows that something is in progress, without showing how far it has got.
class ProgressIndicator {
public:
    Property<bool> spinning { false };
    Property<bool> hidden { false };

    void startAnimation() { spinning.set(true); }
};

/// A bar from 0 to a maximum with a warning and a critical zone.
class LevelIndicator {
public:
    Property<double> maxValue { 1 };
    Property<double> doubleValue { 0 };
    Property<double> warningValue { 0 };
    Property<double> criticalValue { 0 };
    Property<bool> hidden { false };
    Opacity opacity { 1.0 };
};

}
