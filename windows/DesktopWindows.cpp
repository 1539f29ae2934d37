// SPDX-License-Identifier: MIT
#include "windows/DesktopWindows.h"

#include "windows/Browser.h"
#include "windows/Palettes.h"

DesktopWindows::DesktopWindows(WindowsContext const& context)
    : program_(context.application)
    , toolkit_(context.argumentCount, context.arguments, context.bundle, context.toolkitExits)
    , loop_(context.runLoop)
    , windows_(context.outlets, context.bundle, context.runLoop, context.partsFolder)
    , tray_(context.statusItem, context.runLoop)
{
}

void DesktopWindows::run() { QApplication::exec(); }

void DesktopWindows::quit() { QCoreApplication::exit(); }

void DesktopWindows::setAppearance(platform::Appearance appearance) { applyAppearance(appearance); }

void DesktopWindows::showUsageWindowWithMenu() { windows_.showUsageWindowWithMenu(program_); }

void DesktopWindows::leaveMenuToStatusArea()
{
    tray_.hide();
    windows_.leaveMenuToStatusArea();
}

bool DesktopWindows::showInOlderTray() { return tray_.show(); }

void DesktopWindows::popUpMenu() { tray_.popUpMenu(); }

void DesktopWindows::open(std::string const& url) { openInBrowser(url); }
