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

/// Reads the program's status item as a panel would: found through the watcher, followed by its signals. Everything it
/// shows is a copy that is brought up to date in the main loop. Main thread only.
class StatusReader : public QObject {
    Q_OBJECT

public:
    /// The item is looked for from now on.
    explicit StatusReader(QDBusConnection bus);

    /// Whether the item is registered, and its title and menu have been read.
    bool hasItem() const { return hasTitle_ && hasMenu_; }
    QString const& title() const { return title_; }
    /// The visible lines, submenus included.
    std::vector<StatusLine> lines() const;

    /// Reads the menu as it is at this moment, and waits for it; false if it does not come within the bound.
    bool readMenuNow(std::chrono::milliseconds bound);

    /// Runs the main loop until the condition holds, which some event must bring about; false if it does not within
    /// the bound.
    bool waitFor(std::function<bool()> const& condition, std::chrono::milliseconds bound);

    /// Clicks the first visible line with this text, wherever it stands, and waits for the item's answer; false if
    /// there is none.
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
    /// The bus name that the item is registered under.
    QString service_;
    QString title_;
    StatusLine menu_;
    bool hasTitle_ = false;
    bool hasMenu_ = false;
};
