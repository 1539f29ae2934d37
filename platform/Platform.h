// SPDX-License-Identifier: MIT
#pragma once

#include "platform/Color.h"

#include <filesystem>
#include <functional>
#include <string>

namespace platform {

class Application;
class BackgroundQueues;
class Bundle;
class LoginItem;
class NotificationCenter;
class RunLoop;
class UrlLoader;
class UserDefaults;
class Workspace;

/// Everything that the desktop provides to the program. The referenced objects outlive the controller.
struct Platform {
    RunLoop& runLoop;
    BackgroundQueues& backgroundQueues;
    UserDefaults& userDefaults;
    UrlLoader& urlLoader;
    Bundle const& bundle;
    Workspace& workspace;
    Application& application;
    /// Null if the desktop shows no notifications.
    NotificationCenter* notificationCenter = nullptr;
    /// Null if the desktop starts no programs at login.
    LoginItem* loginItem = nullptr;
    /// The user's cache folder, which is shared with other programs.
    std::filesystem::path cachesFolder;
    /// The user's locales, as ICU names them.
    std::string numberLocale = "en_US";
    std::string dateLocale = "en_US";
    /// Whether the keyboard has a touch bar.
    bool touchBarAvailable = false;
    std::function<SystemColors(Appearance)> systemColors = [](Appearance) { return SystemColors {}; };
};

}
