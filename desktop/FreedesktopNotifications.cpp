// SPDX-License-Identifier: MIT
#include "desktop/FreedesktopNotifications.h"

#include "desktop/ActivationToken.h"
#include "desktop/Text.h"

#include <algorithm>
#include <string_view>
#include <utility>

namespace {

using namespace std::chrono_literals;

constexpr char const* service = "org.freedesktop.Notifications";
constexpr char const* path = "/org/freedesktop/Notifications";
constexpr std::string_view defaultAction = "default";
// The bus itself answers these calls.
constexpr auto patience = 5s;

bool isRunning(Bus const& bus)
{
    auto const reply = bus.callAndWait(bus.callBus("NameHasOwner", service), patience);
    int hasOwner = 0;
    return reply && sd_bus_message_read(reply.get(), "b", &hasOwner) > 0 && hasOwner != 0;
}

bool canBeStarted(Bus const& bus)
{
    auto const reply = bus.callAndWait(
        bus.methodCall("org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus", "ListActivatableNames"),
        patience);
    char const* name = nullptr;
    if (!reply || sd_bus_message_enter_container(reply.get(), SD_BUS_TYPE_ARRAY, "s") <= 0)
        return false;
    while (sd_bus_message_read(reply.get(), "s", &name) > 0) {
        if (std::string_view(name) == service)
            return true;
    }
    return false;
}

}

std::unique_ptr<FreedesktopNotifications> FreedesktopNotifications::connectTo(Bus& bus, Look look)
{
    if (!isRunning(bus) && !canBeStarted(bus))
        return nullptr;
    return std::unique_ptr<FreedesktopNotifications>(new FreedesktopNotifications(bus, std::move(look)));
}

FreedesktopNotifications::FreedesktopNotifications(Bus& bus, Look look)
    : bus_(bus)
    , look_(std::move(look))
    // A restarted service counts its ids from one again.
    , serviceOwner_(bus.observeOwner(service, [this](std::string const&) { delivered_.reset(); }))
    , actions_(listen("ActionInvoked", &FreedesktopNotifications::actionInvoked))
    , closings_(listen("NotificationClosed", &FreedesktopNotifications::notificationClosed))
    , tokens_(listen("ActivationToken", &FreedesktopNotifications::activationToken))
{
}

BusSlot FreedesktopNotifications::listen(
    char const* signal, void (FreedesktopNotifications::*handler)(std::uint32_t, sd_bus_message*))
{
    return bus_.listen(service, path, service, signal, [this, handler](sd_bus_message* message) {
        std::uint32_t id = 0;
        if (sd_bus_message_read(message, "u", &id) > 0 && id == delivered_)
            (this->*handler)(id, message);
    });
}

void FreedesktopNotifications::deliver(platform::UserNotification const& notification)
{
    auto message = bus_.methodCall(service, path, service, "Notify");
    if (!message)
        return;
    // The id makes the service replace our last notification, so that they do not pile up.
    append(message.get(), look_.applicationName);
    sd_bus_message_append(message.get(), "u", delivered_.value_or(0));
    append(message.get(), look_.icon);
    append(message.get(), notification.title);
    append(message.get(), escapedForHtml(notification.informativeText));
    sd_bus_message_append(message.get(), "asa{sv}i", 2, defaultAction.data(), look_.actionLabel.c_str(), 1,
        "desktop-entry", "s", look_.identifier.c_str(), -1);
    delivery_ = bus_.call(std::move(message), [this](sd_bus_message* reply) {
        std::uint32_t id = 0;
        if (!sd_bus_message_is_method_error(reply, nullptr) && sd_bus_message_read(reply, "u", &id) > 0)
            delivered_ = id;
    });
}

void FreedesktopNotifications::removeDelivered(platform::NotificationId id)
{
    if (id == delivered_)
        delivered_.reset();
    auto message = bus_.methodCall(service, path, service, "CloseNotification");
    if (message)
        sd_bus_message_append(message.get(), "u", id);
    bus_.send(std::move(message));
}

void FreedesktopNotifications::actionInvoked(std::uint32_t id, sd_bus_message* signal)
{
    char const* action = "";
    if (sd_bus_message_read(signal, "s", &action) > 0 && action == defaultAction && delegate_)
        delegate_->didActivateNotification(id);
}

void FreedesktopNotifications::notificationClosed(std::uint32_t /*id*/, sd_bus_message* /*signal*/)
{
    delivered_.reset();
}

void FreedesktopNotifications::activationToken(std::uint32_t /*id*/, sd_bus_message* signal)
{
    char const* token = nullptr;
    if (sd_bus_message_read(signal, "s", &token) > 0)
        keepActivationToken(token);
}
