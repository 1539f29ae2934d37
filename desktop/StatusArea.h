// SPDX-License-Identifier: MIT
#pragma once

#include "desktop/DBusMenu.h"
#include "desktop/StatusNotifierItem.h"

#include <functional>
#include <memory>
#include <string>

/// Puts the status item where the desktop has a place for it: with a StatusNotifierItem panel, else in an older tray,
/// else nowhere. It follows panels that come and go, and a bus that goes. The model must outlive it. Main thread only.
class StatusArea {
public:
    struct Handlers {
        /// Called from the main loop when the item has no place to be. A panel that has been there and goes does not
        /// count: it goes when the screen is locked, and comes back.
        platform::Task noStatusArea;
        /// Called when the item has a place with a panel.
        platform::Task placed {};
        /// Puts the item into an older tray; false where there is none.
        std::function<bool()> showInOlderTray {};
        /// The panel leaves it to the program to show the menu.
        platform::Task menuRequested {};
        /// A token to come to the front with, told before the click that it belongs to.
        std::function<void(std::string const& token)> activationToken {};
    };

    /// How long a panel may take to come when the user logs in.
    static constexpr platform::Seconds usualLoginTime { 15 };

    /// Registers the item at once, and waits for nobody. A bus that is not connected is a desktop without panels.
    StatusArea(platform::StatusItem& item, StatusNotifierItem::Look look, DBusMenu::TextDirection direction,
        IconDrawer& drawer, Bus& bus, Handlers handlers, platform::Seconds loginTime = usualLoginTime);

private:
    void registerItem();
    void requestRegistration();
    void registrationAnswered(sd_bus_message* reply);
    void itemRegistered();
    void askForHost();
    void hostAnswered(sd_bus_message* reply);
    void ownerChanged(std::string const& owner);
    void startGrace();
    void fallBack();
    bool showInOlderTray() const;
    void giveUp();

    Bus& bus_;
    Handlers handlers_;
    platform::Seconds loginTime_;
    StatusNotifierItem notifierItem_;
    DBusMenu dbusMenu_;
    StatusHost host_;
    bool hasSeenPanel_ = false;
    BusSlot watcherOwner_;
    platform::Subscription busEnd_;
    BusSlot hostQuestion_;
    /// The latest one: what an earlier watcher answers does not count.
    BusSlot registration_;
    /// Until a panel that loses the first label has met the item.
    std::unique_ptr<platform::Timer> meeting_;
    /// Both run only while the item has no place.
    std::unique_ptr<platform::Timer> grace_;
    std::unique_ptr<platform::Timer> login_;
};
