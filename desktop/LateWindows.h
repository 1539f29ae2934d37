// SPDX-License-Identifier: MIT
#pragma once

#include "desktop/LateLibrary.h"
#include "desktop/Windows.h"
#include "platform/Property.h"
#include "platform/Window.h"

#include <memory>
#include <vector>

/// Loads the windows when the first of them is wanted: when the model of one becomes visible, or when they are asked
/// for. What cannot be shown is told in one line on standard error, and tried again the next time. Main thread only.
class LateWindows final {
public:
    LateWindows(WindowsContext context, std::filesystem::path const& library);
    /// The windows go before the models that they show.
    ~LateWindows();
    LateWindows(LateWindows const&) = delete;
    LateWindows& operator=(LateWindows const&) = delete;

    /// The windows, loaded if they were not; nothing if they cannot be.
    Windows* load();
    /// The windows if they are loaded.
    Windows* loaded() const { return windows_.get(); }

    /// Of the windows, also of those that come later.
    void setLook(Look const& look);

private:
    void loadFor(platform::Window& window);

    WindowsContext context_;
    LateLibrary library_;
    Look look_;
    std::unique_ptr<Windows> windows_;
    std::vector<platform::Subscription> wishes_;
};
