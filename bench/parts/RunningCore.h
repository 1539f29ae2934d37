// SPDX-License-Identifier: MIT
#pragma once

#include "app/AppDelegate.h"
#include "app/Outlets.h"
#include "bench/parts/CannedProvider.h"
#include "platform/Application.h"
#include "platform/BackgroundQueues.h"
#include "platform/Bundle.h"
#include "platform/Platform.h"
#include "platform/UserDefaults.h"
#include "platform/Workspace.h"
#include "tests/support/ManualRunLoop.h"
#include "tests/support/TemporaryFolder.h"
#include "ui/MainLayout.h"

/// A desktop without a browser.
struct NoWorkspace final : platform::Workspace {
    bool open(std::string const& /*url*/) override { return false; }
};

/// A program that nobody ends.
struct NoApplication final : platform::Application {
    void activateIgnoringOtherApps() override { }
    void terminate() override { }
};

/// The whole core, from settings and cache files on disk to the models that a user would see. It is launched once made;
/// its first refresh is queued.
struct RunningCore {
    /// Connections of the stand-in provider, with 57.3 and 5.2 GB of the 100 GB that they are capped at.
    static constexpr char const* home = "Home - demohome";
    static constexpr char const* cottage = "Cottage - democottage";

    /// The first entry is the selected one.
    RunningCore(
        platform::RunLoop& runLoop, platform::BackgroundQueues& queues, std::vector<std::string> const& entries);

    std::string const& title() { return controller.usageStatusItem().title.get(); }

    TemporaryFolder folder;
    CannedProvider provider;
    NoWorkspace workspace;
    NoApplication application;
    platform::Bundle bundle;
    platform::UserDefaults defaults;
    platform::Platform platform;
    Outlets outlets;
    MainLayout layout;
    AppDelegate controller;
};

/// Does background work at once.
struct ImmediateQueues final : platform::BackgroundQueues {
    bool async(std::string const& /*label*/, platform::Task task) override
    {
        task();
        return true;
    }
};

/// The core without threads and without waiting, with its first report presented and nothing under way.
struct SettledCore {
    explicit SettledCore(std::vector<std::string> const& entries);

    /// The true time, for which there are words such as "today".
    platform::Date const launched = std::chrono::system_clock::now();
    ManualRunLoop runLoop { launched };
    ImmediateQueues queues;
    RunningCore core;
};
