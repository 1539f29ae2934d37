// SPDX-License-Identifier: MIT
#pragma once

#include "platform/RunLoop.h"
#include "platform/StatusItem.h"
#include "windows/MenuMirror.h"

#include <memory>

class QSystemTrayIcon;

/// The status item in a tray of the kind that was there before StatusNotifierItem panels, and its menu for whoever
/// leaves that to the program. The model must outlive it. Main thread only.
class OlderTray final {
public:
    OlderTray(platform::StatusItem& item, platform::RunLoop& runLoop);
    ~OlderTray();
    OlderTray(OlderTray const&) = delete;
    OlderTray& operator=(OlderTray const&) = delete;

    /// False where there is no such tray.
    bool show();
    void hide();

    /// Shows the menu where the pointer is.
    void popUpMenu();

private:
    platform::StatusItem& item_;
    platform::RunLoop& runLoop_;
    std::unique_ptr<QSystemTrayIcon> icon_;
    /// Made when it is first wanted.
    std::unique_ptr<MenuMirror> menu_;
    platform::Subscription title_;
};
