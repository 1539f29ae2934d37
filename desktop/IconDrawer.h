// SPDX-License-Identifier: MIT
#pragma once

#include "draw/StatusPixmap.h"
#include "platform/BackgroundQueues.h"
#include "platform/HelperProcess.h"
#include "platform/RunLoop.h"

#include <chrono>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

/// Draws the status item's pictures in a helper process, so that the program itself needs neither fonts nor a toolkit.
/// The main loop must outlive the queues' threads. Main thread only.
class IconDrawer {
public:
    using Drawn = std::function<void(std::vector<StatusPixmap>)>;

    /// Takes the helper program, which is killed if it takes longer than the limit.
    IconDrawer(std::filesystem::path helper, platform::RunLoop& runLoop, platform::BackgroundQueues& queues,
        std::chrono::milliseconds limit = std::chrono::seconds(10));
    IconDrawer(IconDrawer const&) = delete;
    IconDrawer& operator=(IconDrawer const&) = delete;
    /// Kills a running helper; no further answers are delivered.
    ~IconDrawer() { cancel(); }

    /// Draws a title in UTF-8 and delivers its pictures from the main loop, or an empty list on failure. Only one
    /// helper runs at a time. Of the requests made meanwhile, only the latest is run; the others are never answered.
    void draw(std::string title, StatusLook look, Drawn drawn);

    /// Kills a running helper and prevents new ones from starting.
    void cancel() { helper_->cancel(); }

private:
    struct Request {
        StatusDrawing drawing;
        Drawn drawn;
    };

    void start(Request request);
    void finish(std::vector<StatusPixmap> const& pixmaps);

    platform::RunLoop& runLoop_;
    platform::BackgroundQueues& queues_;
    std::chrono::milliseconds limit_;
    /// Shared with a thread that may outlive the drawer.
    std::shared_ptr<platform::HelperProcess> helper_;
    /// The handler for the running helper; empty if none is running.
    Drawn drawn_;
    std::optional<Request> waiting_;
    /// Expires with the drawer, since queued tasks may outlive it.
    std::shared_ptr<bool> life_ = std::make_shared<bool>(true);
};
