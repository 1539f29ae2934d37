// SPDX-License-Identifier: MIT
#pragma once

#include "desktop/Bus.h"
#include "desktop/IconDrawer.h"
#include "desktop/StatusHost.h"
#include "platform/StatusItem.h"

#include <functional>
#include <optional>
#include <string>
#include <vector>

/// A status item exported over D-Bus with the org.kde.StatusNotifierItem protocol and the label added to it by the
/// Ayatana indicators. The changes of one main-loop turn are sent as one set of signals. The model must outlive this
/// object. Main thread only.
class StatusNotifierItem {
public:
    static constexpr char const* path = "/StatusNotifierItem";
    static constexpr char const* menuPath = "/StatusMenu";

    struct Look {
        std::string productName;
        /// An icon of the desktop's theme; it must have a symbolic variant.
        std::string iconName;
        /// Where to find the icon if it is not in the desktop's theme.
        std::string themePath;
    };

    struct Handlers {
        /// Called when the panel wants the program itself to show the menu.
        platform::Task menuRequested;
        /// Receives a token that lets the user's next click bring a window to the front.
        std::function<void(std::string const& token)> activationTokenProvided;
    };

    /// Panels that show the label as text always have the icon next to it; other panels show it until the title is
    /// drawn.
    StatusNotifierItem(platform::StatusItem& item, Look look, IconDrawer& drawer, Bus& bus, Handlers handlers);
    StatusNotifierItem(StatusNotifierItem const&) = delete;
    StatusNotifierItem& operator=(StatusNotifierItem const&) = delete;

    /// Draws for another panel from now on. Nothing is drawn before the first call.
    void setHost(StatusHost const& host);

private:
    /// The state as last reported to panels.
    struct Announced {
        std::string title;
        std::string details;
        std::string iconName;
    };

    static sd_bus_vtable const* members();

    std::string id() const { return "usage-meter"; }
    std::string category() const { return "ApplicationStatus"; }
    std::string status() const { return "Active"; }
    /// Cut off with an ellipsis if it is too long for a panel.
    std::string title() const;
    /// The longest title so far, so that a panel can reserve the space and keep the items beside it in place.
    std::string guide() const { return guide_; }
    std::string iconName() const;
    std::string iconThemePath() const;
    /// The item's name and state, for screen readers.
    std::string accessibleDescription() const;
    void writePixmaps(sd_bus_message* reply) const;
    void writeToolTip(sd_bus_message* reply) const;
    void writeItemIsMenu(sd_bus_message* reply) const;
    void writeMenuPath(sd_bus_message* reply) const;
    int requestMenu(sd_bus_message* call);
    int scroll(sd_bus_message* call);
    int provideActivationToken(sd_bus_message* call);

    bool showsLabel() const;
    std::string details() const;
    void update();
    void draw();
    void show(std::vector<StatusPixmap> pixmaps);
    void emit(char const* signal) { bus_.emit(path, interface, signal, ""); }

    static constexpr char const* interface = "org.kde.StatusNotifierItem";

    platform::StatusItem& item_;
    Look look_;
    IconDrawer& drawer_;
    Bus& bus_;
    Handlers handlers_;
    std::optional<StatusHost> host_;
    std::string guide_;
    /// The last pictures drawn; empty for a panel that shows the label.
    std::vector<StatusPixmap> pixmaps_;
    /// Runs until a new title has been unchanged for a moment.
    std::unique_ptr<platform::Timer> drawing_;
    bool isRedrawn_ = false;
    Announced announced_;
    OncePerTurn update_;
    platform::Subscription titleChanges_;
    platform::Subscription menuChanges_;
    BusSlot object_;
};
