// SPDX-License-Identifier: MIT
#pragma once

#include "platform/Alert.h"
#include "platform/Color.h"
#include "platform/Property.h"

#include <deque>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <variant>

namespace platform {

struct TouchBar;
class Window;

/// What a window can show as a sheet: an alert or another window.
using Sheet = std::variant<std::monostate, std::shared_ptr<Alert const>, Window*>;

/// A window: its visibility, title, background and attached sheet.
class Window {
public:
    using Completion = std::function<void(int returnCode)>;

    Property<std::string> title;
    Property<bool> visible { false };
    /// Empty means the desktop's own window colour.
    Property<std::optional<Color>> backgroundColor;
    /// Changed by both the program and the user.
    Property<bool> fullScreen { false };
    Property<Appearance> effectiveAppearance { Appearance::Light };
    /// The sheet attached now; one at most.
    Property<Sheet> attachedSheet;
    /// The touch bar to show while the window is in front. Null means none of its own.
    Property<std::shared_ptr<TouchBar>> touchBar;
    /// The window's position and size as the user left them, in the desktop's own format. If empty, the desktop
    /// chooses.
    Property<std::string> place;
    std::function<void(std::string)> store;
    /// Called when the user closes the window. If it is empty, the window is hidden.
    std::function<void()> closeAction;

    /// Shows the window if it is hidden, and makes it the key window.
    void makeKeyAndOrderFront();
    void orderOut() { visible.set(false); }
    void toggleFullScreen() { fullScreen.set(!fullScreen.get()); }

    /// Calls the observer whenever the window should come to the front as the key window.
    Subscription observeFrontRequests(std::function<void()> observer)
    {
        return frontRequests_.add(std::move(observer));
    }

    /// Attaches an alert after all earlier sheets have ended.
    void beginSheet(Alert alert, Completion completion = {});
    /// Attaches a window in the same way. Does nothing if it is already attached or waiting.
    void beginSheet(Window& sheet);
    /// Detaches a window, or removes it from the queue, and hides it.
    void endSheet(Window& sheet);
    /// Removes the attached alert and all waiting ones without running their completions.
    void endAlerts();
    /// The same, but only for the alerts with this message.
    void endAlerts(std::string_view messageText);
    /// Whether an alert with this message is attached or waiting.
    bool hasAlert(std::string_view messageText) const;

    /// Handles the user's answer to the attached alert.
    void userAnswered(int returnCode);
    void userClosed();
    /// Handles the user's moving or resizing of the window.
    void userPlaced(std::string where);

private:
    struct Begun {
        Sheet sheet;
        Completion completion;
    };

    static bool isAlert(Begun const& begun, std::string_view messageText);
    void attachNextSheet();

    std::deque<Begun> sheets_;
    Observers<> frontRequests_;
};

}
