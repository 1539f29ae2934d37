// SPDX-License-Identifier: MIT
#pragma once

#include "desktop/LateWindows.h"
#include "platform/Application.h"
#include "platform/Workspace.h"

#include <cstdlib>

/// Gives access to the user's desktop.
class DesktopWorkspace final : public platform::Workspace {
public:
    /// Nothing can be opened before this is called.
    void useWindows(LateWindows& windows) { windows_ = &windows; }

    bool open(std::string const& url) override
    {
        auto* const loaded = windows_ ? windows_->load() : nullptr;
        return loaded && loaded->open(url);
    }

private:
    LateWindows* windows_ = nullptr;
};

/// The program, controlled through its main loop.
class DesktopApplication final : public platform::Application {
public:
    explicit DesktopApplication(DesktopRunLoop& loop)
        : loop_(loop)
    {
    }

    /// Does nothing: Linux desktops know windows rather than applications, and each window comes to the front by
    /// itself.
    void activateIgnoringOtherApps() override { }
    void terminate() override { loop_.quit(EXIT_SUCCESS); }

private:
    DesktopRunLoop& loop_;
};
