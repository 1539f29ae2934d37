// SPDX-License-Identifier: MIT
#pragma once

#include "platform/Application.h"
#include "platform/Workspace.h"

/// The user's desktop, through Qt.
class DesktopWorkspace final : public platform::Workspace {
public:
    void open(std::string const& url) override;
};

/// The running program, through Qt.
class DesktopApplication final : public platform::Application {
public:
    void activateIgnoringOtherApps() override;
    void terminate() override;
};
