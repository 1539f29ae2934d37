// SPDX-License-Identifier: MIT
#pragma once

#include "platform/ComboBox.h"
#include "platform/Controls.h"
#include "platform/UserDefaults.h"
#include "platform/Window.h"

namespace platform {

/// Keeps a control and a setting in step: the stored value shows in the control, at once and whenever it is stored, and
/// what the user picks is stored. What the program sets on the control is not. A stored value that the control cannot
/// show leaves it as it is. The settings and the control must outlive the subscription.
Subscription bindToSetting(UserDefaults& defaults, std::string const& key, CheckBox& control);
Subscription bindToSetting(UserDefaults& defaults, std::string const& key, PopUpButton& control);
Subscription bindToSetting(UserDefaults& defaults, std::string const& key, ComboBox& control);
/// The same for a window and its place.
Subscription bindToSetting(UserDefaults& defaults, std::string const& key, Window& window);

}
