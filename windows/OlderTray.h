// SPDX-License-Identifier: MIT
#pragma once

#include "platform/RunLoop.h"
#include "platform/StatusItem.h"
#include "windows/MenuMirror.h"

#include <memory>

class QSystemTrayIcon;

/// The status item in an older system tray (from before StatusNotifierItem), and its menu for panels that leave showing
/// it to the program. The model must outlive it. Main thread only.
class OlderTray final {
public:
    OlderTray(platform::StatusItem& item, platform::RunLoop& runLoop);
    ~OlderTray();
    OlderTray(OlderTray const&) = delete;
    OlderTray& operator=(OlderTray const&) = delete;

    /// Returns false if there is no such tray.
    bool show();
    void hide();

    /// Shows the menu at the pointer.
    void popUpMenu();

private:
    platform::StatusItem& item_;
    platform::RunLoop& runLoop_;
    std::unique_ptr<QSystemTrayIcon> icon_;
    /// Created on first use.
    std::unique_ptr<MenuMirror> menu_;
    platform::Subscription title_;
};
