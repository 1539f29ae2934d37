// SPDX-License-Identifier: MIT
#pragma once

#include "platform/Color.h"

#include <QDBusConnection>
#include <QDBusServiceWatcher>
#include <QDBusVariant>
#include <QObject>

#include <functional>

/// Follows the desktop's preference for light or dark windows, as the settings portal tells it
/// (org.freedesktop.portal.Settings, namespace org.freedesktop.appearance). Nothing is told until there is a portal.
class ColorScheme final : public QObject {
    Q_OBJECT

public:
    /// Asks at once and waits for nobody; tells the present preference and every later one.
    ColorScheme(QDBusConnection bus, std::function<void(platform::Appearance)> observer);

private slots:
    void settingChanged(QString const& space, QString const& key, QDBusVariant const& value);

private:
    void read();

    QDBusConnection bus_;
    std::function<void(platform::Appearance)> observer_;
    QDBusServiceWatcher portal_;
};

/// Gives all windows a light or a dark palette.
void applyPalette(platform::Appearance appearance);
/// The colours of that palette.
platform::SystemColors systemColors(platform::Appearance appearance);
