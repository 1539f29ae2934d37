// SPDX-License-Identifier: MIT
#include "desktop/StatusArea.h"

#include <chrono>
#include <utility>

using namespace std::chrono_literals;

namespace {

// Long enough for a panel to restart.
constexpr auto watcherGracePeriod = 1500ms;
// Long enough for a panel that loses the first label to have seen the item.
constexpr auto timeToMeetItem = 1s;

constexpr char const* watcher = "org.kde.StatusNotifierWatcher";

}

StatusArea::StatusArea(platform::StatusItem& item, StatusNotifierItem::Look look, DBusMenu::TextDirection direction,
    IconDrawer& drawer, Bus& bus, Handlers handlers, platform::Seconds loginTime)
    : bus_(bus)
    , handlers_(std::move(handlers))
    , loginTime_(loginTime)
    // The panel asks for both as soon as it sees the item.
    , notifierItem_(item, std::move(look), drawer, bus, { handlers_.menuRequested, handlers_.activationToken })
    , dbusMenu_(item.menu(), StatusNotifierItem::menuPath, direction, bus)
    , watcherOwner_(bus.observeOwner(watcher, [this](std::string const& owner) { ownerChanged(owner); }))
    // Waits first, because an older tray may disappear along with the bus.
    , busEnd_(bus.observeEnd([this] { startGrace(); }))
{
    if (bus_.isConnected())
        registerItem();
    else
        grace_ = bus_.loop().after(0s, [this] { fallBack(); });
}

void StatusArea::registerItem()
{
    grace_.reset();
    login_.reset();
    meeting_.reset();
    // Asked first, so that the answer arrives before the panel asks for the icon.
    askForHost();
    requestRegistration();
}

void StatusArea::requestRegistration()
{
    auto message = bus_.methodCall(watcher, "/StatusNotifierWatcher", watcher, "RegisterStatusNotifierItem");
    if (!message)
        return;
    sd_bus_message_append(message.get(), "s", bus_.uniqueName());
    sd_bus_message_set_auto_start(message.get(), 0);
    // A hanging panel takes the item when it recovers, however long that takes.
    registration_
        = bus_.call(std::move(message), [this](sd_bus_message* reply) { registrationAnswered(reply); }, Bus::forever);
}

void StatusArea::registrationAnswered(sd_bus_message* reply)
{
    // Only the first answer matters; at the second, the item already has its place.
    if (meeting_)
        return;
    if (sd_bus_message_is_method_error(reply, nullptr) != 0)
        startGrace();
    else
        itemRegistered();
}

void StatusArea::itemRegistered()
{
    hasSeenPanel_ = true;
    if (handlers_.placed)
        handlers_.placed();
    meeting_ = bus_.loop().after(timeToMeetItem, [this] {
        if (host_.losesFirstLabel)
            requestRegistration();
    });
}

void StatusArea::askForHost()
{
    hostQuestion_ = bus_.call(
        bus_.callBus("GetConnectionUnixProcessID", watcher), [this](sd_bus_message* reply) { hostAnswered(reply); });
}

void StatusArea::hostAnswered(sd_bus_message* reply)
{
    std::uint32_t processId = 0;
    bool const isAnswer = sd_bus_message_is_method_error(reply, nullptr) == 0;
    bool const isKnown = isAnswer && sd_bus_message_read(reply, "u", &processId) > 0;
    host_ = statusHostOf(isKnown ? processName(processId) : std::string());
    dbusMenu_.setMarksFirstUnderscoreOnly(host_.marksFirstUnderscoreOnly);
    // Draw nothing if there is no panel.
    if (sd_bus_message_is_method_error(reply, "org.freedesktop.DBus.Error.NameHasNoOwner") == 0)
        notifierItem_.setHost(host_);
}

void StatusArea::ownerChanged(std::string const& owner)
{
    if (owner.empty())
        startGrace();
    else
        registerItem();
}

void StatusArea::startGrace()
{
    grace_ = bus_.loop().after(watcherGracePeriod, [this] { fallBack(); });
}

void StatusArea::fallBack()
{
    login_.reset();
    if (!bus_.isConnected())
        giveUp();
    else if (!showInOlderTray() && !hasSeenPanel_)
        login_ = bus_.loop().after(loginTime_, [this] { giveUp(); });
}

bool StatusArea::showInOlderTray() const { return handlers_.showInOlderTray && handlers_.showInOlderTray(); }

void StatusArea::giveUp()
{
    if (!showInOlderTray() && handlers_.noStatusArea)
        handlers_.noStatusArea();
}
