// SPDX-License-Identifier: MIT
#pragma once

#include "platform/Color.h"

#include <QDBusConnection>
#include <QDBusServiceWatcher>
#include <QDBusVariant>
#include <QObject>

#include <functional>
#include <optional>

/// Follows the desktop's preference for light or dark windows and for high contrast, as the settings portal tells it
/// (org.freedesktop.portal.Settings). Where a portal does not know of contrast, GNOME's own setting counts. Nothing is
/// told until there is a portal.
class ColorScheme final : public QObject {
    Q_OBJECT

public:
    /// Asks at once and waits for nobody; tells the present preference and every later one.
    ColorScheme(QDBusConnection bus, std::function<void(platform::Appearance)> observer);

private slots:
    void settingChanged(QString const& space, QString const& key, QDBusVariant const& value);

private:
    void read();
    void accept(QString const& space, QString const& key, uint value);
    void tell();
    platform::Appearance appearance() const;

    QDBusConnection bus_;
    std::function<void(platform::Appearance)> observer_;
    QDBusServiceWatcher portal_;
    bool isDark_ = false;
    std::optional<bool> isHighContrast_;
    bool isHighContrastInGnome_ = false;
    std::optional<platform::Appearance> told_;
};
