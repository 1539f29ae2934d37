// SPDX-License-Identifier: MIT
#pragma once

#include "detail/DetailedUsageLayout.h"
#include "platform/ComboBox.h"
#include "platform/Controls.h"
#include "platform/Menu.h"
#include "platform/Window.h"

#include <array>
#include <memory>

/// The tag of the usage window's button that replaces it with the daily usage window.
inline constexpr int detailedUsageButtonTag = 69;

/// The controls shared by the controller and the desktop. A desktop names its widgets after the outlets.
struct Outlets {
    using MenuItem = std::shared_ptr<platform::MenuItem>;

    // The status menu
    platform::Menu dropDownMenu;
    MenuItem downloadedMenuItem = std::make_shared<platform::MenuItem>();
    MenuItem freeDownloadedMenuItem = std::make_shared<platform::MenuItem>();
    MenuItem uploadedMenuItem = std::make_shared<platform::MenuItem>();
    MenuItem totalUsageMenuItem = std::make_shared<platform::MenuItem>();
    MenuItem usageCapMenuItem = std::make_shared<platform::MenuItem>();
    MenuItem remainingUsageMenuItem = std::make_shared<platform::MenuItem>();
    MenuItem lastUpdateMenuItem = std::make_shared<platform::MenuItem>();
    MenuItem nextUpdateMenuItem = std::make_shared<platform::MenuItem>();
    MenuItem changeConnectionMenuItem = std::make_shared<platform::MenuItem>();
    platform::Menu connectionMenu;

    // The usage window
    platform::Window monitorWindow;
    /// The status item's figure, and a caption that says what it is.
    platform::TextField headline;
    platform::TextField headlineCaption;
    platform::TextField downloadUsage;
    platform::TextField uploadUsage;
    platform::TextField totalUsage;
    platform::TextField downloadFreeUsage;
    platform::TextField uploadFreeUsage;
    platform::TextField totalFreeUsage;
    platform::TextField finalTotalUsage;
    platform::TextField usageCapText;
    platform::TextField usageRemainingText;
    platform::LevelIndicator usageBar;
    platform::TextField usageCapPercentageText;
    /// The outcome of the last refresh where the figures do not show it; also shown in the preferences window.
    platform::TextField refreshStatus;
    /// The same dates as in the menu.
    platform::TextField lastUpdateText;
    platform::TextField nextUpdateText;
    platform::Button setCapButton;
    platform::Button detailedUsageButton;

    // The preferences window
    platform::Window window;
    platform::ComboBox tarvoUsageKeysComboBox;
    platform::Button addKeyButton;
    platform::Button removeKeyButton;
    platform::TextField usageLimit;
    /// The number that the cap is read as, if that is not obvious.
    platform::TextField usageLimitReading;
    platform::PopUpButton updateIntervalPopupButton;
    platform::PopUpButton statusBarDropdown;
    platform::CheckBox usageCapToggle;
    platform::CheckBox remainingUsageToggle;
    platform::CheckBox lastUpdateToggle;
    platform::CheckBox nextUpdateToggle;
    platform::CheckBox onlyKeyNicknamesToggle;
    platform::CheckBox showNotificationsToggle;
    platform::CheckBox startAtLoginToggle;
    platform::Button clearCacheButton;
    platform::TextField cacheClearedText;
    platform::TextField versionText;
    platform::Button useConnectionButton;

    // The add-key sheet of the preferences window
    platform::Window addKeyWindow;
    platform::TextField keyNewNickname;
    platform::TextField usageID;
    /// Shows what is wrong with the key, or the state of the lookup.
    platform::TextField usageIDStatus;
    platform::Button autoRetrieveCodeButton;
    platform::Button getUsageCodeButton;
    platform::Button cancelButton;
    platform::Button confirmKeyButton;

    DetailedUsageLayout detailedUsage;
};

inline std::array<platform::Window*, 4> windowsOf(Outlets& outlets)
{
    return { &outlets.window, &outlets.addKeyWindow, &outlets.monitorWindow, &outlets.detailedUsage.window };
}
