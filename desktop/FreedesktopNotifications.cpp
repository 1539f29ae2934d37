// SPDX-License-Identifier: MIT
#include "desktop/FreedesktopNotifications.h"

#include "desktop/ActivationToken.h"
#include "desktop/PendingCall.h"
#include "windows/Text.h"

#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QDBusPendingReply>
#include <QGuiApplication>

#include <utility>

namespace {

QString const service = QStringLiteral("org.freedesktop.Notifications");
QString const path = QStringLiteral("/org/freedesktop/Notifications");
QString const defaultAction = QStringLiteral("default");

QDBusMessage call(char const* method)
{
    return QDBusMessage::createMethodCall(service, path, service, QLatin1String(method));
}

bool isAvailable(QDBusConnection const& bus)
{
    if (!bus.isConnected())
        return false;
    auto* const daemon = bus.interface();
    return daemon->isServiceRegistered(service) || daemon->activatableServiceNames().value().contains(service);
}

}

std::unique_ptr<FreedesktopNotifications> FreedesktopNotifications::connectTo(QDBusConnection const& bus, Look look)
{
    if (!isAvailable(bus))
        return nullptr;
    return std::unique_ptr<FreedesktopNotifications>(new FreedesktopNotifications(bus, std::move(look)));
}

FreedesktopNotifications::FreedesktopNotifications(QDBusConnection bus, Look look)
    : bus_(std::move(bus))
    , look_(std::move(look))
    , serviceOwner_(service, bus_, QDBusServiceWatcher::WatchForOwnerChange)
{
    // A service that starts anew counts from one again.
    QObject::connect(&serviceOwner_, &QDBusServiceWatcher::serviceOwnerChanged, this, [this] { delivered_.reset(); });
    auto const listen = [this](char const* signal, char const* slot) {
        bus_.connect(service, path, service, QLatin1String(signal), this, slot);
    };
    listen("ActionInvoked", SLOT(actionInvoked(uint, QString)));
    listen("NotificationClosed", SLOT(notificationClosed(uint, uint)));
    listen("ActivationToken", SLOT(activationToken(uint, QString)));
}

void FreedesktopNotifications::deliver(platform::UserNotification const& notification)
{
    auto message = call("Notify");
    QStringList const actions { defaultAction, look_.actionLabel };
    QVariantMap const hints { { QStringLiteral("desktop-entry"), QGuiApplication::desktopFileName() } };
    // The service shows it in place of the last one, so that they do not collect while nobody looks.
    message << QCoreApplication::applicationName() << delivered_.value_or(0U) << look_.icon << toQt(notification.title)
            << toQt(notification.informativeText).toHtmlEscaped() << actions << hints << -1;
    whenFinished(bus_.asyncCall(message), this, [this](QDBusPendingCall const& finished) {
        QDBusPendingReply<uint> const reply = finished;
        if (reply.isValid())
            delivered_ = reply.value();
    });
}

void FreedesktopNotifications::removeDelivered(platform::NotificationId id)
{
    notificationClosed(id, 0);
    auto message = call("CloseNotification");
    message << id;
    bus_.send(message);
}

void FreedesktopNotifications::actionInvoked(uint id, QString const& action)
{
    if (delegate_ && action == defaultAction && id == delivered_)
        delegate_->didActivateNotification(id);
}

void FreedesktopNotifications::notificationClosed(uint id, uint /*reason*/)
{
    if (id == delivered_)
        delivered_.reset();
}

void FreedesktopNotifications::activationToken(uint id, QString const& token)
{
    if (id == delivered_)
        keepActivationToken(token);
}
