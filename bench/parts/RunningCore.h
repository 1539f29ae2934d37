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

/// An application that cannot be ended.
struct NoApplication final : platform::Application {
    void activateIgnoringOtherApps() override { }
    void terminate() override { }
};

/// The whole core, from the settings and cache files on disk to the models that a user would see. It is launched on
/// construction, with its first refresh queued.
struct RunningCore {
    /// Connections of the stand-in provider that have used 57.3 and 5.2 GB of their caps of 100 GB.
    static constexpr char const* home = "Home - demohome";
    static constexpr char const* cottage = "Cottage - democottage";

    /// Selects the first entry.
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

/// Runs background work immediately.
struct ImmediateQueues final : platform::BackgroundQueues {
    bool async(std::string const& /*label*/, platform::Task task) override
    {
        task();
        return true;
    }
};

/// The core without threads or delays, with its first report presented and nothing in progress.
struct SettledCore {
    explicit SettledCore(std::vector<std::string> const& entries);

    /// The real time, so that words such as "today" are used.
    platform::Date const launched = std::chrono::system_clock::now();
    ManualRunLoop runLoop { launched };
    ImmediateQueues queues;
    RunningCore core;
};
