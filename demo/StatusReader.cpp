// SPDX-License-Identifier: MIT
#include "demo/StatusReader.h"

#include <QDBusArgument>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QDBusServiceWatcher>
#include <QEventLoop>
#include <QStringList>
#include <QTimer>
#include <QVariantMap>

#include <algorithm>
#include <utility>

namespace {

QString watcherName() { return QStringLiteral("org.kde.StatusNotifierWatcher"); }
QString watcherPath() { return QStringLiteral("/StatusNotifierWatcher"); }
QString itemName() { return QStringLiteral("org.kde.StatusNotifierItem"); }
QString itemPath() { return QStringLiteral("/StatusNotifierItem"); }
QString menuName() { return QStringLiteral("com.canonical.dbusmenu"); }
QString menuPath() { return QStringLiteral("/StatusMenu"); }

template <typename Handler>
void call(QDBusConnection const& bus, QObject* receiver, QDBusMessage const& message, Handler handler)
{
    // A blocking call would deadlock if the item is in this process.
    auto* const watcher = new QDBusPendingCallWatcher(bus.asyncCall(message), receiver);
    QObject::connect(watcher, &QDBusPendingCallWatcher::finished, receiver, [handler, watcher] {
        watcher->deleteLater();
        handler(watcher->reply());
    });
}

// Watchers identify an item as "bus name/path" or "bus name@/path", or only by its bus name.
QString serviceOf(QString const& item) { return item.section(QLatin1Char('/'), 0, 0).section(QLatin1Char('@'), 0, 0); }

QDBusMessage getAll(QString const& service, QString const& path, QString const& interface)
{
    auto message = QDBusMessage::createMethodCall(
        service, path, QStringLiteral("org.freedesktop.DBus.Properties"), QStringLiteral("GetAll"));
    message.setArguments({ interface });
    return message;
}

QVariantMap mapOf(QDBusMessage const& reply) { return qdbus_cast<QVariantMap>(reply.arguments().value(0)); }

// Reads a line and all lines under it: (ia{sv}av).
StatusLine readLine(QDBusArgument const& argument)
{
    StatusLine line;
    QVariantMap properties;
    argument.beginStructure();
    argument >> line.id >> properties;
    argument.beginArray();
    while (!argument.atEnd()) {
        QDBusVariant child;
        argument >> child;
        line.submenu.push_back(readLine(child.variant().value<QDBusArgument>()));
    }
    argument.endArray();
    argument.endStructure();
    line.text = properties.value(QStringLiteral("label")).toString().replace(QStringLiteral("__"), QStringLiteral("_"));
    line.isVisible = properties.value(QStringLiteral("visible"), true).toBool();
    line.isChecked = properties.value(QStringLiteral("toggle-state"), 0).toInt() == 1;
    line.isSeparator = properties.value(QStringLiteral("type")) == QStringLiteral("separator");
    return line;
}

std::vector<StatusLine> visible(std::vector<StatusLine> lines)
{
    std::erase_if(lines, [](StatusLine const& line) { return !line.isVisible; });
    for (auto& line : lines)
        line.submenu = visible(std::move(line.submenu));
    return lines;
}

QDBusMessage layoutCall(QString const& service)
{
    auto message = QDBusMessage::createMethodCall(service, menuPath(), menuName(), QStringLiteral("GetLayout"));
    message.setArguments({ 0, -1, QStringList() });
    return message;
}

StatusLine const* find(std::vector<StatusLine> const& lines, QString const& text)
{
    for (auto const& line : lines) {
        if (line.text == text && !line.isSeparator)
            return &line;
        if (auto const* const found = find(line.submenu, text))
            return found;
    }
    return nullptr;
}

}

StatusReader::StatusReader(QDBusConnection bus)
    : bus_(std::move(bus))
{
    connectSignal(watcherName(), watcherPath(), watcherName(), QStringLiteral("StatusNotifierItemRegistered"),
        SLOT(registered(QString)));
    connectSignal(watcherName(), watcherPath(), watcherName(), QStringLiteral("StatusNotifierItemUnregistered"),
        SLOT(unregistered(QString)));
    auto* const owner = new QDBusServiceWatcher(watcherName(), bus_, QDBusServiceWatcher::WatchForOwnerChange, this);
    connect(owner, &QDBusServiceWatcher::serviceRegistered, this, &StatusReader::lookForItems);
    connect(owner, &QDBusServiceWatcher::serviceUnregistered, this, &StatusReader::forgetItem);
    lookForItems();
}

std::vector<StatusLine> StatusReader::lines() const { return visible(menu_.submenu); }

bool StatusReader::waitFor(std::function<bool()> const& condition, std::chrono::milliseconds bound)
{
    QEventLoop loop;
    QTimer timer;
    timer.setSingleShot(true);
    connect(&timer, &QTimer::timeout, &loop, &QEventLoop::quit);
    timer.start(bound);
    // Checked after every turn, because the condition may depend on more than the item.
    while (!condition() && timer.isActive())
        loop.processEvents(QEventLoop::WaitForMoreEvents);
    return condition();
}

bool StatusReader::click(QString const& text, std::chrono::milliseconds bound)
{
    auto const shown = lines();
    auto const* const line = find(shown, text);
    if (!line)
        return false;
    auto message = QDBusMessage::createMethodCall(service_, menuPath(), menuName(), QStringLiteral("Event"));
    message.setArguments({ line->id, QStringLiteral("clicked"), QVariant::fromValue(QDBusVariant(0)), 0U });
    QDBusPendingCallWatcher const answer(bus_.asyncCall(message));
    return waitFor([&answer] { return answer.isFinished(); }, bound) && !answer.isError();
}

void StatusReader::lookForItems()
{
    call(bus_, this, getAll(watcherName(), watcherPath(), watcherName()), [this](QDBusMessage const& reply) {
        for (auto const& item : mapOf(reply).value(QStringLiteral("RegisteredStatusNotifierItems")).toStringList())
            registered(item);
    });
}

void StatusReader::registered(QString const& item)
{
    auto const service = serviceOf(item);
    call(bus_, this, getAll(service, itemPath(), itemName()), [this, service](QDBusMessage const& reply) {
        if (mapOf(reply).value(QStringLiteral("Id")) == QStringLiteral("usage-meter"))
            follow(service);
    });
}

void StatusReader::unregistered(QString const& item)
{
    if (serviceOf(item) == service_)
        forgetItem();
}

void StatusReader::forgetItem()
{
    service_.clear();
    hasTitle_ = false;
    hasMenu_ = false;
    Q_EMIT changed();
}

void StatusReader::follow(QString const& service)
{
    if (std::exchange(service_, service) != service) {
        connectSignal(service, itemPath(), itemName(), QStringLiteral("NewTitle"), SLOT(readTitle()));
        connectSignal(service, menuPath(), menuName(), QStringLiteral("LayoutUpdated"), SLOT(readMenu()));
        connectSignal(service, menuPath(), menuName(), QStringLiteral("ItemsPropertiesUpdated"), SLOT(readMenu()));
    }
    readTitle();
    readMenu();
}

void StatusReader::connectSignal(
    QString const& service, QString const& path, QString const& interface, QString const& name, char const* slot)
{
    bus_.connect(service, path, interface, name, this, slot);
}

void StatusReader::readTitle()
{
    call(bus_, this, getAll(service_, itemPath(), itemName()), [this, service = service_](QDBusMessage const& reply) {
        if (service != service_)
            return;
        title_ = mapOf(reply).value(QStringLiteral("Title")).toString();
        hasTitle_ = true;
        Q_EMIT changed();
    });
}

void StatusReader::readMenu()
{
    call(bus_, this, layoutCall(service_), [this, service = service_](QDBusMessage const& reply) {
        if (service == service_)
            acceptMenu(reply);
    });
}

bool StatusReader::readMenuNow(std::chrono::milliseconds bound)
{
    auto const reply = bus_.call(layoutCall(service_), QDBus::Block, static_cast<int>(bound.count()));
    acceptMenu(reply);
    return reply.type() == QDBusMessage::ReplyMessage;
}

void StatusReader::acceptMenu(QDBusMessage const& reply)
{
    if (reply.arguments().size() != 2)
        return;
    menu_ = readLine(reply.arguments().at(1).value<QDBusArgument>());
    hasMenu_ = true;
    Q_EMIT changed();
}
