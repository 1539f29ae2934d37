// SPDX-License-Identifier: MIT
#include "demo/StatusNotifierWatcher.h"

#include <QDBusMessage>

namespace {

QString watcherName() { return QStringLiteral("org.kde.StatusNotifierWatcher"); }

}

StatusNotifierWatcher::StatusNotifierWatcher(QDBusConnection bus)
    : bus_(std::move(bus))
{
    owners_.setWatchMode(QDBusServiceWatcher::WatchForUnregistration);
    owners_.setConnection(bus_);
    connect(&owners_, &QDBusServiceWatcher::serviceUnregistered, this, &StatusNotifierWatcher::forget);
}

StatusNotifierWatcher::~StatusNotifierWatcher()
{
    bus_.unregisterObject(QStringLiteral("/StatusNotifierWatcher"));
    bus_.unregisterService(watcherName());
}

bool StatusNotifierWatcher::start()
{
    bus_.registerObject(QStringLiteral("/StatusNotifierWatcher"), this, QDBusConnection::ExportScriptableContents);
    return bus_.registerService(watcherName());
}

void StatusNotifierWatcher::RegisterStatusNotifierItem(QString const& service)
{
    bool const isPath = service.startsWith(QLatin1Char('/'));
    QString const name = isPath ? message().service() : service;
    QString const item = name + (isPath ? service : QStringLiteral("/StatusNotifierItem"));
    if (items_.contains(item))
        return;
    items_.push_back(item);
    owners_.addWatchedService(name);
    Q_EMIT StatusNotifierItemRegistered(item);
}

void StatusNotifierWatcher::RegisterStatusNotifierHost(QString const& /*service*/)
{
    Q_EMIT StatusNotifierHostRegistered();
}

void StatusNotifierWatcher::forget(QString const& service)
{
    owners_.removeWatchedService(service);
    for (auto const& item : QStringList(items_)) {
        if (!item.startsWith(service + QLatin1Char('/')))
            continue;
        items_.removeAll(item);
        Q_EMIT StatusNotifierItemUnregistered(item);
    }
}
