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

/// A status item as panels see it over D-Bus, after the org.kde.StatusNotifierItem protocol with the label that the
/// Ayatana indicators added to it. The changes of one main-loop turn go out as one set of signals. The model must
/// outlive this object. Main thread only.
class StatusNotifierItem {
public:
    static constexpr char const* path = "/StatusNotifierItem";
    static constexpr char const* menuPath = "/StatusMenu";

    struct Look {
        std::string productName;
        /// An icon of the desktop's theme, which has a symbolic one beside it.
        std::string iconName;
        /// Where it is found if the desktop does not know it.
        std::string themePath;
    };

    struct Handlers {
        /// The panel leaves it to the program to show the menu.
        platform::Task menuRequested;
        /// What the user's next click does may come to the front with this token.
        std::function<void(std::string const& token)> activationTokenProvided;
    };

    /// Panels that show the label as text have the icon beside it; the others have it until the title is drawn.
    StatusNotifierItem(platform::StatusItem& item, Look look, IconDrawer& drawer, Bus& bus, Handlers handlers);
    StatusNotifierItem(StatusNotifierItem const&) = delete;
    StatusNotifierItem& operator=(StatusNotifierItem const&) = delete;

    /// Draws for another panel from now on. Nothing is drawn before there is one.
    void setHost(StatusHost const& host);

private:
    /// What panels have been told.
    struct Told {
        std::string title;
        std::string details;
        std::string iconName;
    };

    static sd_bus_vtable const* members();

    std::string id() const { return "usage-meter"; }
    std::string category() const { return "ApplicationStatus"; }
    std::string status() const { return "Active"; }
    /// Cut off with an ellipsis where a panel could not show it.
    std::string title() const;
    /// The longest title so far, whose room a panel can keep free so that the items beside it stay where they are.
    std::string guide() const { return guide_; }
    std::string iconName() const;
    std::string iconThemePath() const;
    /// What the item is and says, for panels that read it out.
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
    /// The last ones that were drawn; none for a panel that shows the label.
    std::vector<StatusPixmap> pixmaps_;
    /// Until a new title has stood for a moment.
    std::unique_ptr<platform::Timer> drawing_;
    bool isRedrawn_ = false;
    Told told_;
    OncePerTurn update_;
    platform::Subscription titleChanges_;
    platform::Subscription menuChanges_;
    BusSlot object_;
};
