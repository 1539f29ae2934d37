// SPDX-License-Identifier: MIT
#pragma once

#include "platform/ComboBox.h"
#include "platform/Controls.h"
#include "platform/UserDefaults.h"
#include "platform/Window.h"

namespace platform {

/// Keeps a control and a setting in sync. The control shows the stored value, now and after every change, and what the
/// user picks is stored. Values set by the program are not stored. A stored value that the control cannot show is
/// ignored. The settings and the control must outlive the subscription.
Subscription bindToSetting(UserDefaults& defaults, std::string const& key, CheckBox& control);
Subscription bindToSetting(UserDefaults& defaults, std::string const& key, PopUpButton& control);
Subscription bindToSetting(UserDefaults& defaults, std::string const& key, ComboBox& control);
/// The same for a window and its position.
Subscription bindToSetting(UserDefaults& defaults, std::string const& key, Window& window);

}
