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

/// What can stand on a window until the user is done with it: an alert or another window.
using Sheet = std::variant<std::monostate, std::shared_ptr<Alert const>, Window*>;

/// A window: whether it is on screen, its title and ground, and the sheet attached to it.
class Window {
public:
    using Completion = std::function<void(int returnCode)>;

    Property<std::string> title;
    Property<bool> visible { false };
    /// Nothing: the desktop's own window colour.
    Property<std::optional<Color>> backgroundColor;
    /// Changed by the program and by the user alike.
    Property<bool> fullScreen { false };
    Property<Appearance> effectiveAppearance { Appearance::Light };
    /// What stands on the window now; one sheet at most.
    Property<Sheet> attachedSheet;
    /// What the keyboard shows while the window is in front; nothing: no bar of its own.
    Property<std::shared_ptr<TouchBar>> touchBar;
    /// Where the user left the window and how large, as the desktop writes it; empty: wherever the desktop puts it.
    Property<std::string> place;
    std::function<void(std::string)> store;
    /// What the user's closing of the window does; nothing: the window goes.
    std::function<void()> closeAction;

    /// Shows the window if it is not shown, and makes it the key window.
    void makeKeyAndOrderFront();
    void orderOut() { visible.set(false); }
    void toggleFullScreen() { fullScreen.set(!fullScreen.get()); }

    /// Tells whenever the window, already shown, is to come to the front as key window.
    Subscription observeFrontRequests(std::function<void()> observer)
    {
        return frontRequests_.add(std::move(observer));
    }

    /// Attaches an alert, once every sheet that was begun before it has ended.
    void beginSheet(Alert alert, Completion completion = {});
    /// Attaches a window in the same way. One that is attached or waits already stays as it is.
    void beginSheet(Window& sheet);
    /// Ends a window's being a sheet, or its waiting to be one, and takes it off the screen.
    void endSheet(Window& sheet);
    /// Takes the attached alert and all that wait away. That is no answer: no completion runs.
    void endAlerts();
    /// The same for the alerts with this message alone.
    void endAlerts(std::string_view messageText);
    /// Whether an alert with this message is attached or waits.
    bool hasAlert(std::string_view messageText) const;

    /// The user answered the attached alert.
    void userAnswered(int returnCode);
    void userClosed();
    /// The user left the window there.
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
