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

/// A push button.
class Button {
public:
    Property<std::string> title;
    Property<bool> highlighted { false };
    /// Nothing: the desktop's own button colour.
    Property<std::optional<Color>> bezelColor;
    Property<bool> hidden { false };
    Property<bool> enabled { true };
    int tag = 0;
    Action action;

    void userClicked() { send(action, this); }
};

/// A two-state button. What the program sets is shown only; what the user does is also stored and acted on.
class CheckBox {
public:
    Property<bool> on { false };
    Property<bool> hidden { false };
    Property<std::string> title;
    /// Nothing: the desktop's own text colour.
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

    /// The action is sent for a pick of the same item too.
    void userSelected(int index);
};

/// A line of text, to read or to type into.
class TextField {
public:
    Property<std::string> text;
    Property<std::string> toolTip;
    Property<bool> hidden { false };
    Opacity opacity { 1.0 };

    /// The whole text as the user edited it. Line breaks, tabs and other control characters are removed.
    void userTyped(std::string_view typed);
};

/// Lets the user pick a month between two dates. It holds a whole date, of which only the month is shown.
class DatePicker {
public:
    Property<Date> minDate {};
    Property<Date> maxDate {};
    Property<Date> dateValue {};
    /// The locale, as ICU names it, whose calendar and words the months are shown in.
    std::string locale = "en_US";
    Property<bool> hidden { false };

    std::function<void()> action;

    void userPicked(Date date);
};

/// Shows that something is under way, without telling how far it is.
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
