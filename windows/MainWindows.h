// SPDX-License-Identifier: MIT
#pragma once

#include "windows/MenuMirror.h"
#include "windows/WebPluginLoader.h"
#include "windows/WindowMirror.h"

#include <QString>

#include <filesystem>
#include <memory>

class QMenuBar;
namespace platform {
class Application;
}
struct Outlets;

/// The preferences window with its add-key sheet, the usage window and the detailed usage window.
class MainWindows final {
public:
    /// Takes the folder of the web engine's libraries, which are loaded when the detailed usage window is first opened.
    MainWindows(
        Outlets& outlets, platform::Bundle const& bundle, platform::RunLoop& runLoop, std::filesystem::path webFolder);

    /// Shows the usage window with the status menu in it, for a desktop that has no place for a status item. Closing
    /// that window quits the program.
    void showUsageWindowWithMenu(platform::Application& application);
    /// The status item has found a place: makes the usage window an ordinary one, or hides it if the user did not open
    /// it.
    void leaveMenuToStatusArea();
    /// Reports the open windows' positions to the models before the program ends.
    void notePlaces();

private:
    void setMenuShown(bool shown);

    Outlets& outlets_;
    platform::RunLoop& runLoop_;
    WebPluginLoader webPlugin_;
    WindowMirror preferences_;
    WindowMirror addKey_;
    WindowMirror usage_;
    WindowMirror detailedUsage_;
    QString productName_;
    std::unique_ptr<MenuMirror> menu_;
    QMenuBar* menuBar_ = nullptr;
    bool isUninvited_ = false;
    platform::Subscription detailedUsageClosing_;
};
