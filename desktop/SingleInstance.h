// SPDX-License-Identifier: MIT
#pragma once

#include <QDBusConnection>
#include <QObject>
#include <QVariantMap>

#include <functional>

/// Keeps the program to one instance in a session: the first owns the bus name, and every later one activates the first
/// through org.freedesktop.Application (freedesktop.org's D-Bus activation).
class SingleInstance final : public QObject {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.Application")

public:
    /// The identifier is the bus name, and names the object's path.
    SingleInstance(QString identifier, QDBusConnection bus);
    /// Gives the name back, and waits for nobody.
    ~SingleInstance() override;

    enum class Outcome { IsFirst, ActivatedFirst, FirstIsSilent };

    /// The first instance, also where there is no bus to tell, takes the name. A later one has the first activated, and
    /// waits some seconds for its answer; should the first end meanwhile, it is the first itself.
    Outcome start();

    /// What the first instance does when a later one activates it.
    void whenActivated(std::function<void()> activated) { activated_ = std::move(activated); }

public slots:
    void Activate(QVariantMap const& platformData);
    void Open(QStringList const& uris, QVariantMap const& platformData);
    void ActivateAction(QString const& action, QVariantList const& parameter, QVariantMap const& platformData);

private:
    bool becomeFirst();
    bool activateFirst();

    QString identifier_;
    QDBusConnection bus_;
    std::function<void()> activated_;
};
