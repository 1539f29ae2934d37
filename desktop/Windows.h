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

/// All of the program that takes a toolkit: the windows that show the models, an older tray, and the toolkit's own loop
/// around the main loop. In a library of its own that is loaded when the first of it is wanted. Main thread only.
class Windows : public OuterLoop {
public:
    virtual void setLook(Look const& look) = 0;

    /// Shows the usage window with the status menu in it, for a desktop that has no place for a status item. Without
    /// one the window is the program: closing it is its end.
    virtual void showUsageWindowWithMenu() = 0;
    /// The status item has a place: the usage window is an ordinary one again, and goes if it came uninvited; so does
    /// the item in an older tray.
    virtual void leaveMenuToStatusArea() = 0;
    /// Puts the status item into an older tray; false where there is none.
    virtual bool showInOlderTray() = 0;
    /// Shows the status menu where the pointer is.
    virtual void popUpMenu() = 0;
    /// Shows an address in the user's browser; false where that cannot be started.
    virtual bool open(std::string const& url) = 0;
};

/// What the windows are made of. All of it outlives them.
struct WindowsContext {
    /// As the program was called; the toolkit takes its own arguments out.
    int& argumentCount;
    char** arguments;
    Outlets& outlets;
    platform::StatusItem& statusItem;
    platform::Bundle const& bundle;
    DesktopRunLoop& runLoop;
    platform::Application& application;
    /// Where the web engine's libraries are.
    std::filesystem::path partsFolder;
    /// The toolkit turned out to be of no use: it can be neither used nor taken down. Must not return.
    platform::Task toolkitFailed;
    /// The toolkit ends the process by itself, as it does when the display goes. Nothing may be taken down then, for
    /// its threads are at work. Must not return.
    std::function<void(int status)> toolkitExits;
};

/// The library's way in, by this name.
using MakeWindows = void (*)(WindowsContext const& context, std::unique_ptr<Windows>& made);
constexpr char const* makeWindowsName = "makeUsageMeterWindows";
