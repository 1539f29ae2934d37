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

/// Has the status item's pictures drawn by a helper process, so that the program needs neither fonts nor a toolkit for
/// them. The main loop must outlive the queues' threads. Main thread only.
class IconDrawer {
public:
    using Drawn = std::function<void(std::vector<StatusPixmap>)>;

    /// The helper program; it is killed if it takes longer than the limit.
    IconDrawer(std::filesystem::path helper, platform::RunLoop& runLoop, platform::BackgroundQueues& queues,
        std::chrono::milliseconds limit = std::chrono::seconds(10));
    IconDrawer(IconDrawer const&) = delete;
    IconDrawer& operator=(IconDrawer const&) = delete;
    /// Ends a running helper; nothing is answered any more.
    ~IconDrawer() { cancel(); }

    /// Answers from the main loop with the pictures of a title in UTF-8, or with none when they cannot be drawn. One
    /// helper runs at a time: of the drawings that are asked for meanwhile the latest comes next, and the others are
    /// never answered.
    void draw(std::string title, StatusLook look, Drawn drawn);

    /// Ends a running helper, and keeps every later one from being started.
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
    /// Of the running helper; none when no helper runs.
    Drawn drawn_;
    std::optional<Request> waiting_;
    /// Goes with the drawer, which tasks in the main loop may outlive.
    std::shared_ptr<bool> life_ = std::make_shared<bool>(true);
};
