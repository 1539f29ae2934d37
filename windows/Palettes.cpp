// SPDX-License-Identifier: MIT
#include "windows/Palettes.h"

#include "desktop/Environment.h"
#include "desktop/SystemColors.h"
#include "windows/Contrast.h"
#include "windows/HighContrastStyle.h"
#include "windows/RoomyStyle.h"
#include "windows/Text.h"

#include <QApplication>
#include <QPalette>
#include <QStyleFactory>

#include <algorithm>

namespace {

void setDisabledText(QPalette& palette, QColor const& color)
{
    for (auto const role : { QPalette::WindowText, QPalette::ButtonText, QPalette::Text })
        palette.setColor(QPalette::Disabled, role, color);
}

QPalette darkPalette()
{
    auto const colors = systemColors(platform::Appearance::Dark);
    QPalette palette(QColor(0x35, 0x37, 0x3B), toQt(colors.windowBackground));
    palette.setColor(QPalette::Base, toQt(colors.controlBackground));
    palette.setColor(QPalette::AlternateBase, QColor(0x2B, 0x2D, 0x30));
    palette.setColor(QPalette::Highlight, QColor(0x37, 0x85, 0x3F));
    palette.setColor(QPalette::Mid, QColor(0x80, 0x84, 0x8B));
    palette.setColor(QPalette::PlaceholderText, QColor(0xBE, 0xC2, 0xC9));
    palette.setColor(QPalette::ToolTipBase, QColor(0x2B, 0x2D, 0x30));
    palette.setColor(QPalette::ToolTipText, Qt::white);
    setDisabledText(palette, QColor(0xBE, 0xC2, 0xC9));
    return palette;
}

QPalette lightPalette()
{
    auto const ground = toQt(systemColors(platform::Appearance::Light).windowBackground);
    QPalette palette(ground, ground);
    palette.setColor(QPalette::Highlight, QColor(0x2B, 0x7A, 0x33));
    palette.setColor(QPalette::PlaceholderText, QColor(0x5E, 0x5E, 0x5E));
    setDisabledText(palette, QColor(0x5E, 0x5E, 0x5E));
    return palette;
}

// Uses one colour on another, with no shades except for disabled text, which still has a contrast of 7:1.
QPalette highContrastPalette(platform::Appearance appearance, QColor const& disabled, QColor const& highlight)
{
    auto const colors = systemColors(appearance);
    auto const ground = toQt(colors.windowBackground);
    auto const text = toQt(colors.text);
    QPalette palette(text, ground, text, text, text, text, text, ground, ground);
    palette.setColor(QPalette::Highlight, highlight);
    palette.setColor(QPalette::HighlightedText, ground);
    palette.setColor(QPalette::AlternateBase, ground);
    palette.setColor(QPalette::PlaceholderText, disabled);
    palette.setColor(QPalette::ToolTipBase, ground);
    palette.setColor(QPalette::ToolTipText, text);
    setDisabledText(palette, disabled);
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
        return highContrastPalette(appearance, QColor(0x55, 0x55, 0x55), QColor(0x00, 0x00, 0xC8));
    case platform::Appearance::HighContrastDark:
        return highContrastPalette(appearance, QColor(0xB0, 0xB0, 0xB0), QColor(0xFF, 0xE0, 0x00));
    }
    return lightPalette();
}

// Finds the nearest shade of a colour with the wanted contrast to another one.
QColor withContrast(QColor color, QColor const& other, double wanted)
{
    // Fine enough for a shade between two colours that both want their contrast.
    float const step = other.lightnessF() < 0.5F ? 0.002F : -0.002F;
    auto lightness = color.lightnessF() + step;
    for (; contrast(color, other) < wanted && lightness > 0 && lightness < 1; lightness += step)
        color = QColor::fromHslF(std::max(color.hslHueF(), 0.0F), color.hslSaturationF(), lightness);
    return color;
}

// Uses the user's colour, adjusted to stand out from the windows and to keep selected text legible.
QColor highlight(QColor const& accent, QPalette const& palette)
{
    return withContrast(
        withContrast(accent, palette.color(QPalette::Window), 3), palette.color(QPalette::HighlightedText), 4.5);
}

// With Plasma's style, the toolkit also uses Plasma's colours and fonts, and follows their changes.
bool followsPlasma()
{
    auto const desktops = QString::fromStdString(environmentText("XDG_CURRENT_DESKTOP")).split(QLatin1Char(':'));
    return desktops.contains(QLatin1String("KDE")) && QStyleFactory::keys().contains(QLatin1String("Breeze"));
}

bool isHighContrast(platform::Appearance appearance)
{
    return appearance == platform::Appearance::HighContrastLight
        || appearance == platform::Appearance::HighContrastDark;
}

}

void applyLook(Look const& look)
{
    if (followsPlasma())
        return;
    // These styles take their colours from the palette, which can change at any time.
    if (isHighContrast(look.appearance))
        QApplication::setStyle(new HighContrastStyle);
    else
        QApplication::setStyle(new RoomyStyle);
    auto colors = palette(look.appearance);
    if (look.accent && !isHighContrast(look.appearance))
        colors.setColor(QPalette::Highlight, highlight(toQt(*look.accent), colors));
    QApplication::setPalette(colors);
}
