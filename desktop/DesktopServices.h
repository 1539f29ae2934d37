// SPDX-License-Identifier: MIT
#pragma once

#include "desktop/LateWindows.h"
#include "platform/Application.h"
#include "platform/Workspace.h"

#include <cstdlib>

/// The user's desktop, as our windows reach it.
class DesktopWorkspace final : public platform::Workspace {
public:
    /// Until then nothing can be opened.
    void useWindows(LateWindows& windows) { windows_ = &windows; }

    bool open(std::string const& url) override
    {
        auto* const loaded = windows_ ? windows_->load() : nullptr;
        return loaded && loaded->open(url);
    }

private:
    LateWindows* windows_ = nullptr;
};

/// The program as its main loop runs it.
class DesktopApplication final : public platform::Application {
public:
    explicit DesktopApplication(DesktopRunLoop& loop)
        : loop_(loop)
    {
    }

    /// Does nothing: Linux desktops know windows, not applications, and each window comes to the front by itself.
    void activateIgnoringOtherApps() override { }
    void terminate() override { loop_.quit(EXIT_SUCCESS); }

private:
    DesktopRunLoop& loop_;
};
