// SPDX-License-Identifier: MIT
#pragma once

#include <QDBusConnection>
#include <QDBusMessage>
#include <QObject>
#include <QString>

#include <chrono>
#include <functional>
#include <vector>

/// One line of a status item's menu.
struct StatusLine {
    int id = 0;
    QString text;
    bool isVisible = true;
    bool isChecked = false;
    bool isSeparator = false;
    std::vector<StatusLine> submenu;
};

/// Reads the program's status item as a panel does: finds it through the watcher and follows its signals. Everything
/// here is a copy, updated in the main loop. Main thread only.
class StatusReader : public QObject {
    Q_OBJECT

public:
    /// Starts looking for the item.
    explicit StatusReader(QDBusConnection bus);

    /// Whether the item is registered and its title and menu have been read.
    bool hasItem() const { return hasTitle_ && hasMenu_; }
    QString const& title() const { return title_; }
    /// The visible lines, submenus included.
    std::vector<StatusLine> lines() const;

    /// Reads the menu as it is now, and waits for it. Returns false on timeout.
    bool readMenuNow(std::chrono::milliseconds bound);

    /// Runs the main loop until the condition holds, which must be the result of some event. Returns false on timeout.
    bool waitFor(std::function<bool()> const& condition, std::chrono::milliseconds bound);

    /// Clicks the first visible line with this text in any submenu, and waits for the item's answer. Returns false if
    /// there is no such line.
    bool click(QString const& text, std::chrono::milliseconds bound);

Q_SIGNALS:
    void changed();

private Q_SLOTS:
    void lookForItems();
    void registered(QString const& item);
    void unregistered(QString const& item);
    void readTitle();
    void readMenu();

private:
    void connectSignal(
        QString const& service, QString const& path, QString const& interface, QString const& name, char const* slot);
    void follow(QString const& service);
    void forgetItem();
    void acceptMenu(QDBusMessage const& reply);

    QDBusConnection bus_;
    /// The bus name under which the item is registered.
    QString service_;
    QString title_;
    StatusLine menu_;
    bool hasTitle_ = false;
    bool hasMenu_ = false;
};
