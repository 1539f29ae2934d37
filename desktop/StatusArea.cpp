// SPDX-License-Identifier: MIT
#include "desktop/StatusArea.h"

#include "windows/Text.h"

#include "desktop/PendingCall.h"
#include "draw/StatusIcon.h"

#include <QCursor>
#include <QDBusMessage>
#include <QDBusPendingReply>
#include <QIcon>
#include <QPixmap>
#include <QSystemTrayIcon>

#include <chrono>
#include <limits>

using namespace std::chrono_literals;

namespace {

// A panel that is started anew is back by then.
constexpr auto graceOfWatcher = 1500ms;
// A panel that loses the first label knows the item by then.
constexpr auto timeToMeetItem = 1s;

QString watcherName() { return QStringLiteral("org.kde.StatusNotifierWatcher"); }

QIcon trayIcon(QString const& title)
{
    QIcon icon;
    for (auto const& image : statusImages(title, StatusLook::Icon))
        icon.addPixmap(QPixmap::fromImage(image));
    return icon;
}

}

StatusArea::StatusArea(platform::StatusItem& item, StatusNotifierItem::ThemeIcon icon, Handlers handlers,
    QDBusConnection bus, std::chrono::milliseconds loginTime)
    : item_(item)
    , handlers_(std::move(handlers))
    , bus_(std::move(bus))
    , notifierItem_(item, std::move(icon))
    , dbusMenu_(item.menu())
{
    grace_.setSingleShot(true);
    grace_.setInterval(graceOfWatcher);
    connect(&grace_, &QTimer::timeout, this, &StatusArea::fallBack);
    login_.setSingleShot(true);
    login_.setInterval(loginTime);
    connect(&login_, &QTimer::timeout, this, &StatusArea::giveUp);
    if (bus_.isConnected())
        connectItem();
    else
        QMetaObject::invokeMethod(this, &StatusArea::fallBack, Qt::QueuedConnection);
}

StatusArea::~StatusArea() = default;

void StatusArea::connectItem()
{
    // The panel asks for both as soon as it hears of the item.
    bus_.registerObject(
        QLatin1String(StatusNotifierItem::path), &notifierItem_, QDBusConnection::ExportScriptableContents);
    bus_.registerObject(
        QLatin1String(StatusNotifierItem::menuPath), &dbusMenu_, QDBusConnection::ExportScriptableContents);

    connect(&notifierItem_, &StatusNotifierItem::menuRequested, this, &StatusArea::popUpMenu, Qt::QueuedConnection);
    connect(&notifierItem_, &StatusNotifierItem::activationTokenProvided, this, [this](QString const& token) {
        if (handlers_.activationToken)
            handlers_.activationToken(token);
    });
    connect(&watcherOwner_, &QDBusServiceWatcher::serviceOwnerChanged, this,
        [this](QString const&, QString const&, QString const& owner) { ownerChanged(owner); });
    watcherOwner_.setWatchMode(QDBusServiceWatcher::WatchForOwnerChange);
    watcherOwner_.setConnection(bus_);
    watcherOwner_.addWatchedService(watcherName());
    // The bus itself went away, which only this end of the connection can tell. An older tray may go with it.
    bus_.connect({}, QStringLiteral("/org/freedesktop/DBus/Local"), QStringLiteral("org.freedesktop.DBus.Local"),
        QStringLiteral("Disconnected"), &grace_, SLOT(start()));
    registerItem();
}

void StatusArea::registerItem()
{
    grace_.stop();
    login_.stop();
    // Asked first, so that the answer is here before the panel asks for the icon.
    askForHost();
    registration_ = std::make_unique<QObject>();
    whenFinished(requestRegistration(), registration_.get(), [this](QDBusPendingCall const& reply) {
        if (reply.isError())
            grace_.start();
        else
            itemRegistered();
    });
}

QDBusPendingCall StatusArea::requestRegistration()
{
    auto call = QDBusMessage::createMethodCall(watcherName(), QStringLiteral("/StatusNotifierWatcher"), watcherName(),
        QStringLiteral("RegisterStatusNotifierItem"));
    call.setArguments({ bus_.baseService() });
    call.setAutoStartService(false);
    // A panel that hangs takes the item when it goes on, however long that is.
    constexpr int unlimited = std::numeric_limits<int>::max();
    return bus_.asyncCall(call, unlimited);
}

void StatusArea::itemRegistered()
{
    hasSeenPanel_ = true;
    trayTitle_ = {};
    trayIcon_.reset();
    if (handlers_.placed)
        handlers_.placed();
    QTimer::singleShot(timeToMeetItem, registration_.get(), [this] {
        if (host_.losesFirstLabel)
            requestRegistration();
    });
}

void StatusArea::askForHost()
{
    auto call = QDBusMessage::createMethodCall(QStringLiteral("org.freedesktop.DBus"),
        QStringLiteral("/org/freedesktop/DBus"), QStringLiteral("org.freedesktop.DBus"),
        QStringLiteral("GetConnectionUnixProcessID"));
    call.setArguments({ watcherName() });
    whenFinished(bus_.asyncCall(call), this, [this](QDBusPendingCall const& finished) {
        QDBusPendingReply<uint> const reply = finished;
        host_ = statusHostOf(reply.isError() ? QString() : processName(reply.value()));
        notifierItem_.setHost(host_);
        dbusMenu_.setMarksFirstUnderscoreOnly(host_.marksFirstUnderscoreOnly);
    });
}

void StatusArea::ownerChanged(QString const& owner)
{
    if (owner.isEmpty())
        grace_.start();
    else
        registerItem();
}

void StatusArea::fallBack()
{
    login_.stop();
    if (!bus_.isConnected())
        giveUp();
    else if (!showTrayIcon() && !hasSeenPanel_)
        login_.start();
}

bool StatusArea::showTrayIcon()
{
    // Asked only now: the toolkit settles on a kind of tray once, by what it finds at the first question.
    if (!QSystemTrayIcon::isSystemTrayAvailable())
        return false;
    trayIcon_ = std::make_unique<QSystemTrayIcon>();
    connect(trayIcon_.get(), &QSystemTrayIcon::activated, this, &StatusArea::popUpMenu);
    trayTitle_ = item_.title.observe([this](std::string const& title) {
        auto const text = toQt(title);
        trayIcon_->setIcon(trayIcon(text));
        trayIcon_->setToolTip(text);
    });
    trayIcon_->show();
    return true;
}

void StatusArea::giveUp()
{
    if (!showTrayIcon() && handlers_.noStatusArea)
        handlers_.noStatusArea();
}

void StatusArea::popUpMenu()
{
    if (!menu_)
        menu_ = std::make_unique<MenuMirror>(item_.menu());
    menu_->popup(QCursor::pos());
}
