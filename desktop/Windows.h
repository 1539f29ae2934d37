// SPDX-License-Identifier: MIT
#pragma once

#include "desktop/DesktopRunLoop.h"
#include "desktop/Look.h"

#include <filesystem>
#include <functional>
#include <memory>
#include <string>

namespace platform {
class Application;
class Bundle;
class StatusItem;
}
struct Outlets;

/// The part of the program that needs a toolkit: the windows that show the models, an older tray, and the toolkit's own
/// loop around the main loop. It is in a separate library that is loaded on demand. Main thread only.
class Windows : public OuterLoop {
public:
    virtual void setLook(Look const& look) = 0;

    /// Shows the usage window with the status menu in it, for a desktop that has no place for a status item. Closing
    /// that window quits the program.
    virtual void showUsageWindowWithMenu() = 0;
    /// The status item has found a place: makes the usage window an ordinary one, or hides it if the user did not open
    /// it, and removes the item from an older tray.
    virtual void leaveMenuToStatusArea() = 0;
    /// Puts the status item into an older tray. Returns false if there is none.
    virtual bool showInOlderTray() = 0;
    /// Shows the status menu at the pointer.
    virtual void popUpMenu() = 0;
    /// Opens a URL in the user's browser. Returns false if the browser cannot be started.
    virtual bool open(std::string const& url) = 0;
};

/// What the windows need. All of it outlives them.
struct WindowsContext {
    /// The program's arguments; the toolkit removes its own.
    int& argumentCount;
    char** arguments;
    Outlets& outlets;
    platform::StatusItem& statusItem;
    platform::Bundle const& bundle;
    DesktopRunLoop& runLoop;
    platform::Application& application;
    /// The folder of the web engine's libraries.
    std::filesystem::path partsFolder;
    /// Called if the toolkit turns out to be unusable; it cannot be destroyed either. Must not return.
    platform::Task toolkitFailed;
    /// Called if the toolkit ends the process, for instance when the display is lost. Destroy nothing then, since the
    /// toolkit's threads are still running. Must not return.
    std::function<void(int status)> toolkitExits;
};

/// The library's entry point, found by this name.
using MakeWindows = void (*)(WindowsContext const& context, std::unique_ptr<Windows>& made);
constexpr char const* makeWindowsName = "makeUsageMeterWindows";
