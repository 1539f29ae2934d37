// SPDX-License-Identifier: MIT
#pragma once

#include <QDBusConnection>
#include <QDBusContext>
#include <QDBusServiceWatcher>
#include <QObject>
#include <QString>
#include <QStringList>

/// The desktop's list of status items, as in the org.kde.StatusNotifierWatcher protocol, which also gives the slots and
/// signals their names. It claims that there is a panel, but draws nothing.
class StatusNotifierWatcher : public QObject, protected QDBusContext {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.kde.StatusNotifierWatcher")
    Q_PROPERTY(QStringList RegisteredStatusNotifierItems READ items)
    Q_PROPERTY(bool IsStatusNotifierHostRegistered READ hasHost CONSTANT)
    Q_PROPERTY(int ProtocolVersion READ protocolVersion CONSTANT)

public:
    explicit StatusNotifierWatcher(QDBusConnection bus);
    /// Releases the name.
    ~StatusNotifierWatcher() override;

    /// Takes the watcher's name. Returns false if another program has it.
    bool start();

    QStringList items() const { return items_; }
    bool hasHost() const { return true; }
    int protocolVersion() const { return 0; }

public Q_SLOTS:
    /// Takes a bus name, or the path of an object of the caller.
    Q_SCRIPTABLE void RegisterStatusNotifierItem(QString const& service);
    Q_SCRIPTABLE void RegisterStatusNotifierHost(QString const& service);

Q_SIGNALS:
    Q_SCRIPTABLE void StatusNotifierItemRegistered(QString const& item);
    Q_SCRIPTABLE void StatusNotifierItemUnregistered(QString const& item);
    Q_SCRIPTABLE void StatusNotifierHostRegistered();

private:
    void forget(QString const& service);

    QDBusConnection bus_;
    QDBusServiceWatcher owners_;
    /// Each is a bus name followed by a path.
    QStringList items_;
};
