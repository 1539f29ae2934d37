// SPDX-License-Identifier: MIT
#pragma once

#include "app/AppDelegate.h"
#include "app/Outlets.h"
#include "desktop/AutostartEntry.h"
#include "desktop/ColorScheme.h"
#include "desktop/DesktopServices.h"
#include "desktop/Display.h"
#include "desktop/ExitSignals.h"
#include "desktop/FreedesktopNotifications.h"
#include "desktop/IconDrawer.h"
#include "desktop/LateWindows.h"
#include "desktop/SingleInstance.h"
#include "desktop/StatusArea.h"
#include "platform/Bundle.h"
#include "platform/Platform.h"
#include "platform/ProcessUrlLoader.h"
#include "platform/ThreadQueues.h"
#include "platform/UserDefaults.h"
#include "ui/MainLayout.h"

#include <memory>
#include <string>

/// The command line; the toolkit removes its own arguments.
struct Arguments {
    int& count;
    char** values;
};

/// The running program: the controller, the desktop's services that it is handed, and the places where it shows itself.
/// Main thread only.
class Program final {
public:
    /// What it is given outlives it.
    Program(Arguments arguments, platform::Bundle const& bundle, DesktopRunLoop& runLoop, Display const& display,
        Bus& bus, SingleInstance& instance);
    Program(Program const&) = delete;
    Program& operator=(Program const&) = delete;

    /// Runs until the user quits or a signal ends it. Returns the exit status.
    int run();

private:
    platform::Platform platformServices();
    WindowsContext windowsContext(Arguments arguments);
    StatusArea::Handlers statusAreaHandlers(Display const& display);
    [[noreturn]] void restart(char** arguments);
    void showMenuInWindow();

    platform::Bundle const& bundle_;
    DesktopRunLoop& runLoop_;
    std::string activationToken_;
    platform::ThreadQueues queues_;
    platform::ProcessUrlLoader urlLoader_;
    IconDrawer iconDrawer_;
    platform::UserDefaults userDefaults_;
    std::unique_ptr<FreedesktopNotifications> notifications_;
    AutostartEntry loginItem_;
    DesktopWorkspace workspace_;
    DesktopApplication application_;
    platform::Platform platform_;

    Outlets outlets_;
    MainLayout layout_;
    AppDelegate controller_;
    /// Whether a panel shows the status item.
    bool hasPlace_ = false;
    LateWindows windows_;
    StatusArea statusArea_;
    ColorScheme colorScheme_;
    platform::Subscription trimming_;
    ExitSignals exitSignals_;
};
