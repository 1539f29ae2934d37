// SPDX-License-Identifier: MIT
#include "desktop/ColorScheme.h"

#include "desktop/HighContrastStyle.h"
#include "desktop/PendingCall.h"
#include "desktop/RoomyStyle.h"
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
QString const gnomeSpace = QStringLiteral("org.gnome.desktop.a11y.interface");

using Settings = QMap<QString, QVariantMap>;

QPalette darkPalette()
{
    QPalette palette(QColor(0x35, 0x37, 0x3B), QColor(0x2B, 0x2D, 0x30));
    palette.setColor(QPalette::Base, QColor(0x1E, 0x1F, 0x22));
    palette.setColor(QPalette::AlternateBase, QColor(0x2B, 0x2D, 0x30));
    palette.setColor(QPalette::Highlight, QColor(0x37, 0x85, 0x3F));
    palette.setColor(QPalette::Mid, QColor(0x80, 0x84, 0x8B));
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

// One colour on another and nothing between, but for what is disabled: that still reads with 7:1.
QPalette highContrastPalette(QColor const& ground, QColor const& text, QColor const& disabled, QColor const& highlight)
{
    QPalette palette(text, ground, text, text, text, text, text, ground, ground);
    palette.setColor(QPalette::Highlight, highlight);
    palette.setColor(QPalette::HighlightedText, ground);
    palette.setColor(QPalette::AlternateBase, ground);
    palette.setColor(QPalette::PlaceholderText, disabled);
    palette.setColor(QPalette::ToolTipBase, ground);
    palette.setColor(QPalette::ToolTipText, text);
    for (auto const role : { QPalette::WindowText, QPalette::ButtonText, QPalette::Text })
        palette.setColor(QPalette::Disabled, role, disabled);
    return palette;
}

QPalette palette(platform::Appearance appearance)
{
    switch (appearance) {
    case platform::Appearance::Light:
        break;
    case platform::Appearance::Dark:
        return darkPalette();
    case platform::Appearance::HighContrastLight:
        return highContrastPalette(Qt::white, Qt::black, QColor(0x55, 0x55, 0x55), QColor(0x00, 0x00, 0xC8));
    case platform::Appearance::HighContrastDark:
        return highContrastPalette(Qt::black, Qt::white, QColor(0xB0, 0xB0, 0xB0), QColor(0xFF, 0xE0, 0x00));
    }
    return lightPalette();
}

bool isHighContrast(platform::Appearance appearance)
{
    return appearance == platform::Appearance::HighContrastLight
        || appearance == platform::Appearance::HighContrastDark;
}

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

void applyAppearance(platform::Appearance appearance)
{
    // Styles that take their colours from the palette, so that these can change at any time.
    if (isHighContrast(appearance))
        QApplication::setStyle(new HighContrastStyle);
    else
        QApplication::setStyle(new RoomyStyle);
    QApplication::setPalette(palette(appearance));
}

platform::SystemColors systemColors(platform::Appearance appearance)
{
    auto const colors = palette(appearance);
    return { fromQt(colors.color(QPalette::Window)), fromQt(colors.color(QPalette::WindowText)),
        fromQt(colors.color(QPalette::Base)) };
}
