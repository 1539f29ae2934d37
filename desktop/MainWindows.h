// SPDX-License-Identifier: MIT
#pragma once

#include "desktop/MenuMirror.h"
#include "desktop/WindowMirror.h"

#include <QString>

#include <memory>

namespace platform {
class Application;
}
struct Outlets;

/// The preferences window with its add-key sheet, and the usage window.
class MainWindows final {
public:
    MainWindows(Outlets& outlets, platform::Bundle const& bundle, platform::RunLoop const& runLoop);

    /// Shows the usage window with the status menu in it, for a desktop that has no place for a status item. Without
    /// one the window is the program: closing it is its end.
    void showUsageWindowWithMenu(platform::Application& application);
    /// The status item has a place: the usage window is an ordinary one again.
    void leaveMenuToStatusArea();

private:
    Outlets& outlets_;
    WindowMirror preferences_;
    WindowMirror addKey_;
    WindowMirror usage_;
    QString productName_;
    std::unique_ptr<MenuMirror> menu_;
};
