// SPDX-License-Identifier: MIT
#pragma once

#include "desktop/DBusMenu.h"
#include "desktop/StatusNotifierItem.h"

#include <functional>
#include <memory>
#include <string>

/// Puts the status item where the desktop has room for it: in a StatusNotifierItem panel, else in an older tray, else
/// nowhere. It copes with panels that come and go, and with the loss of the bus. The model must outlive it. Main thread
/// only.
class StatusArea {
public:
    struct Handlers {
        /// Called from the main loop when there is no place for the item. Not called for a panel that disappears later,
        /// as happens while the screen is locked.
        platform::Task noStatusArea;
        /// Called when a panel has accepted the item.
        platform::Task placed {};
        /// Puts the item into an older tray. Returns false if there is none.
        std::function<bool()> showInOlderTray {};
        /// Called when the panel wants the program itself to show the menu.
        platform::Task menuRequested {};
        /// Receives an activation token, before the click that it belongs to.
        std::function<void(std::string const& token)> activationToken {};
    };

    /// The time that a panel may take to start after login.
    static constexpr platform::Seconds usualLoginTime { 15 };

    /// Registers the item at once, without blocking. A disconnected bus counts as a desktop without panels.
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
    /// The latest registration; replies from an earlier watcher are ignored.
    BusSlot registration_;
    /// Runs until a panel that loses the first label has seen the item.
    std::unique_ptr<platform::Timer> meeting_;
    /// Both run only while there is no place for the item.
    std::unique_ptr<platform::Timer> grace_;
    std::unique_ptr<platform::Timer> login_;
};
