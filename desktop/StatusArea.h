// SPDX-License-Identifier: MIT
#pragma once

#include "desktop/DBusMenu.h"
#include "desktop/StatusNotifierItem.h"
#include "platform/StatusItem.h"
#include "windows/MenuMirror.h"

#include <QDBusConnection>
#include <QDBusPendingCall>
#include <QDBusServiceWatcher>
#include <QObject>
#include <QString>
#include <QTimer>

#include <chrono>
#include <functional>
#include <memory>

class QSystemTrayIcon;

/// Puts the status item where the desktop has a place for it: with a StatusNotifierItem panel, else in an older tray,
/// else nowhere. It follows panels that come and go, and a bus that goes. The model must outlive it. Main thread only.
class StatusArea : public QObject {
    Q_OBJECT

public:
    struct Handlers {
        /// Called from the main loop when the item has no place to be. A panel that has been there and goes does not
        /// count: it goes when the screen is locked, and comes back.
        std::function<void()> noStatusArea;
        /// Called when the item has a place with a panel.
        std::function<void()> placed;
        /// A token to come to the front with, told before the click that it belongs to.
        std::function<void(QString const& token)> activationToken;
    };

    /// How long a panel may take to come when the user logs in.
    static constexpr std::chrono::milliseconds usualLoginTime = std::chrono::seconds(15);

    /// Registers the item at once, and waits for nobody. A bus that is not connected is a desktop without panels.
    StatusArea(platform::StatusItem& item, StatusNotifierItem::ThemeIcon icon, Handlers handlers,
        QDBusConnection bus = QDBusConnection::sessionBus(), std::chrono::milliseconds loginTime = usualLoginTime);
    ~StatusArea() override;

private:
    void connectItem();
    void registerItem();
    QDBusPendingCall requestRegistration();
    void itemRegistered();
    void askForHost();
    void ownerChanged(QString const& owner);
    void fallBack();
    /// False where there is no older tray.
    bool showTrayIcon();
    void giveUp();
    void popUpMenu();

    platform::StatusItem& item_;
    Handlers handlers_;
    QDBusConnection bus_;
    StatusNotifierItem notifierItem_;
    DBusMenu dbusMenu_;
    QDBusServiceWatcher watcherOwner_;
    StatusHost host_;
    /// Both run only while the item has no place.
    QTimer grace_;
    QTimer login_;
    bool hasSeenPanel_ = false;
    /// Goes with the latest registration: what an earlier watcher answers does not count.
    std::unique_ptr<QObject> registration_;
    /// Made when a panel first leaves the menu to us.
    std::unique_ptr<MenuMirror> menu_;
    std::unique_ptr<QSystemTrayIcon> trayIcon_;
    platform::Subscription trayTitle_;
};
