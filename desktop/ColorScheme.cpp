// SPDX-License-Identifier: MIT
#include "desktop/ColorScheme.h"

#include "desktop/PendingCall.h"
#include "desktop/Text.h"

#include <QApplication>
#include <QDBusMessage>
#include <QDBusMetaType>
#include <QDBusPendingReply>
#include <QPalette>

#include <utility>

namespace {

QString const service = QStringLiteral("org.freedesktop.portal.Desktop");
QString const path = QStringLiteral("/org/freedesktop/portal/desktop");
QString const interface = QStringLiteral("org.freedesktop.portal.Settings");
QString const appearanceSpace = QStringLiteral("org.freedesktop.appearance");
QString const colorSchemeKey = QStringLiteral("color-scheme");

// The portal's number: 1 prefers dark, 2 light, 0 has no preference.
platform::Appearance appearanceOf(uint colorScheme)
{
    return colorScheme == 1 ? platform::Appearance::Dark : platform::Appearance::Light;
}

// The portal answers a variant within a variant.
uint numberIn(QVariant value)
{
    while (value.metaType() == QMetaType::fromType<QDBusVariant>())
        value = value.value<QDBusVariant>().variant();
    return value.toUInt();
}

QPalette darkPalette()
{
    QPalette palette(QColor(0x35, 0x37, 0x3B), QColor(0x2B, 0x2D, 0x30));
    palette.setColor(QPalette::Base, QColor(0x1E, 0x1F, 0x22));
    palette.setColor(QPalette::AlternateBase, QColor(0x2B, 0x2D, 0x30));
    palette.setColor(QPalette::Highlight, QColor(0x3F, 0x8F, 0x49));
    palette.setColor(QPalette::PlaceholderText, QColor(0xA0, 0xA4, 0xAB));
    palette.setColor(QPalette::ToolTipBase, QColor(0x2B, 0x2D, 0x30));
    palette.setColor(QPalette::ToolTipText, Qt::white);
    palette.setColor(QPalette::Disabled, QPalette::WindowText, QColor(0x8A, 0x8E, 0x95));
    palette.setColor(QPalette::Disabled, QPalette::ButtonText, QColor(0x8A, 0x8E, 0x95));
    palette.setColor(QPalette::Disabled, QPalette::Text, QColor(0x8A, 0x8E, 0x95));
    return palette;
}

QPalette lightPalette()
{
    QPalette palette(QColor(0xF3, 0xF3, 0xF3), QColor(0xF3, 0xF3, 0xF3));
    palette.setColor(QPalette::Highlight, QColor(0x2B, 0x7A, 0x33));
    palette.setColor(QPalette::PlaceholderText, QColor(0x6A, 0x6A, 0x6A));
    return palette;
}

QPalette palette(platform::Appearance appearance)
{
    return appearance == platform::Appearance::Dark ? darkPalette() : lightPalette();
}

}

ColorScheme::ColorScheme(QDBusConnection bus, std::function<void(platform::Appearance)> observer)
    : bus_(std::move(bus))
    , observer_(std::move(observer))
    , portal_(service, bus_, QDBusServiceWatcher::WatchForRegistration)
{
    qRegisterMetaType<QDBusVariant>("QDBusVariant");
    bus_.connect(service, path, interface, QStringLiteral("SettingChanged"), this,
        SLOT(settingChanged(QString, QString, QDBusVariant)));
    connect(&portal_, &QDBusServiceWatcher::serviceRegistered, this, &ColorScheme::read);
    read();
}

void ColorScheme::read()
{
    auto message = QDBusMessage::createMethodCall(service, path, interface, QStringLiteral("Read"));
    message << appearanceSpace << colorSchemeKey;
    whenFinished(bus_.asyncCall(message), this, [this](QDBusPendingCall const& finished) {
        QDBusPendingReply<QDBusVariant> const reply = finished;
        if (reply.isValid())
            observer_(appearanceOf(numberIn(reply.value().variant())));
    });
}

void ColorScheme::settingChanged(QString const& space, QString const& key, QDBusVariant const& value)
{
    if (space == appearanceSpace && key == colorSchemeKey)
        observer_(appearanceOf(numberIn(value.variant())));
}

void applyPalette(platform::Appearance appearance) { QApplication::setPalette(palette(appearance)); }

platform::SystemColors systemColors(platform::Appearance appearance)
{
    auto const colors = palette(appearance);
    return { fromQt(colors.color(QPalette::Window)), fromQt(colors.color(QPalette::WindowText)),
        fromQt(colors.color(QPalette::Base)) };
}
