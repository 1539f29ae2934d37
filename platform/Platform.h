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

/// All that the program is handed by the desktop it runs on. What is referred to outlives the controller.
struct Platform {
    RunLoop& runLoop;
    BackgroundQueues& backgroundQueues;
    UserDefaults& userDefaults;
    UrlLoader& urlLoader;
    Bundle const& bundle;
    Workspace& workspace;
    Application& application;
    /// None where the desktop shows no notifications.
    NotificationCenter* notificationCenter = nullptr;
    /// None where the desktop starts no programs at login.
    LoginItem* loginItem = nullptr;
    /// The user's caches folder, which other programs share.
    std::filesystem::path cachesFolder;
    /// The user's locales, as ICU names them.
    std::string numberLocale = "en_US";
    std::string dateLocale = "en_US";
    /// Whether the keyboard has a bar of buttons for the window in front.
    bool touchBarAvailable = false;
    std::function<SystemColors(Appearance)> systemColors = [](Appearance) { return SystemColors {}; };
};

}
