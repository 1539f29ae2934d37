// SPDX-License-Identifier: MIT
#include "desktop/ColorScheme.h"

#include "desktop/PendingCall.h"
#include "windows/Text.h"

#include <QDBusMessage>
#include <QDBusMetaType>
#include <QDBusPendingReply>

#include <utility>

namespace {

QString const service = QStringLiteral("org.freedesktop.portal.Desktop");
QString const path = QStringLiteral("/org/freedesktop/portal/desktop");
QString const interface = QStringLiteral("org.freedesktop.portal.Settings");
QString const appearanceSpace = QStringLiteral("org.freedesktop.appearance");
QString const gnomeSpace = QStringLiteral("org.gnome.desktop.a11y.interface");

using Settings = QMap<QString, QVariantMap>;

}

ColorScheme::ColorScheme(QDBusConnection bus, std::function<void(platform::Appearance)> observer)
    : bus_(std::move(bus))
    , observer_(std::move(observer))
    , portal_(service, bus_, QDBusServiceWatcher::WatchForRegistration)
{
    qRegisterMetaType<QDBusVariant>("QDBusVariant");
    qDBusRegisterMetaType<Settings>();
    bus_.connect(service, path, interface, QStringLiteral("SettingChanged"), this,
        SLOT(settingChanged(QString, QString, QDBusVariant)));
    connect(&portal_, &QDBusServiceWatcher::serviceRegistered, this, &ColorScheme::read);
    read();
}

void ColorScheme::read()
{
    auto message = QDBusMessage::createMethodCall(service, path, interface, QStringLiteral("ReadAll"));
    message << QStringList { appearanceSpace, gnomeSpace };
    whenFinished(bus_.asyncCall(message), this, [this](QDBusPendingCall const& finished) {
        QDBusPendingReply<Settings> const reply = finished;
        if (!reply.isValid())
            return;
        for (auto const& [space, settings] : reply.value().toStdMap()) {
            for (auto const& [key, value] : settings.toStdMap())
                accept(space, key, value.toUInt());
        }
        tell();
    });
}

void ColorScheme::settingChanged(QString const& space, QString const& key, QDBusVariant const& value)
{
    accept(space, key, value.variant().toUInt());
    tell();
}

// The portal's numbers: a scheme of 1 prefers dark, 2 light; a contrast of 1 prefers a high one; 0 has no preference.
void ColorScheme::accept(QString const& space, QString const& key, uint value)
{
    if (space == appearanceSpace && key == QStringLiteral("color-scheme"))
        isDark_ = value == 1;
    if (space == appearanceSpace && key == QStringLiteral("contrast"))
        isHighContrast_ = value == 1;
    if (space == gnomeSpace && key == QStringLiteral("high-contrast"))
        isHighContrastInGnome_ = value == 1;
}

void ColorScheme::tell()
{
    auto const now = appearance();
    if (std::exchange(told_, now) != now)
        observer_(now);
}

platform::Appearance ColorScheme::appearance() const
{
    if (isHighContrast_.value_or(isHighContrastInGnome_))
        return isDark_ ? platform::Appearance::HighContrastDark : platform::Appearance::HighContrastLight;
    return isDark_ ? platform::Appearance::Dark : platform::Appearance::Light;
}
