// SPDX-License-Identifier: MIT
#pragma once

#include "desktop/Windows.h"
#include "windows/MainWindows.h"
#include "windows/OlderTray.h"
#include "windows/Toolkit.h"
#include "windows/ToolkitLoop.h"

/// All that takes the toolkit, with the toolkit itself.
class DesktopWindows final : public Windows {
public:
    explicit DesktopWindows(WindowsContext const& context);

    void run() override;
    void quit() override;
    void setAppearance(platform::Appearance appearance) override;
    void showUsageWindowWithMenu() override;
    void leaveMenuToStatusArea() override;
    bool showInOlderTray() override;
    void popUpMenu() override;
    void open(std::string const& url) override;

private:
    platform::Application& program_;
    Toolkit toolkit_;
    ToolkitLoop loop_;
    MainWindows windows_;
    OlderTray tray_;
};
