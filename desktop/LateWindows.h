// SPDX-License-Identifier: MIT
#pragma once

#include "desktop/LateLibrary.h"
#include "desktop/Windows.h"
#include "platform/Property.h"
#include "platform/Window.h"

#include <memory>
#include <vector>

/// Loads the windows on demand: when a window's model becomes visible, or on request. A failure is printed to standard
/// error as one line, and loading is retried the next time. Main thread only.
class LateWindows final {
public:
    LateWindows(WindowsContext context, std::filesystem::path const& library);
    /// Destroys the windows before the models that they show.
    ~LateWindows();
    LateWindows(LateWindows const&) = delete;
    LateWindows& operator=(LateWindows const&) = delete;

    /// Returns the windows, loading them if necessary, or null on failure.
    Windows* load();
    /// Returns the windows, or null if they are not loaded.
    Windows* loaded() const { return windows_.get(); }

    /// Sets the look of the windows, including those loaded later.
    void setLook(Look const& look);

private:
    void loadFor(platform::Window& window);

    WindowsContext context_;
    LateLibrary library_;
    Look look_;
    std::unique_ptr<Windows> windows_;
    std::vector<platform::Subscription> wishes_;
};
