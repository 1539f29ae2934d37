// SPDX-License-Identifier: MIT
#pragma once

#include "platform/Color.h"

#include <QColor>
#include <QString>

#include <string_view>

// Converts the core's texts and colours to Qt's types. Nothing else does.

inline QString toQt(std::string_view text)
{
    return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
}

inline QColor toQt(platform::Color color) { return { color.red, color.green, color.blue }; }

/// Escapes a text for a button or a menu line, where Qt treats "&" as a mnemonic mark and a tab as the start of the
/// shortcut's name.
inline QString asLabel(QString text)
{
    return text.replace(QLatin1Char('&'), QLatin1String("&&")).replace(QLatin1Char('\t'), QLatin1Char(' '));
}
inline QString asLabel(std::string_view text) { return asLabel(toQt(text)); }

/// Breaks a text without spaces into lines that fit on a screen.
inline QString inLines(QString text)
{
    constexpr qsizetype lineLength = 64;
    for (qsizetype end = lineLength; end < text.size(); end += lineLength + 1)
        text.insert(end, QLatin1Char('\n'));
    return text;
}

/// Escapes a text for a window's title, where Qt treats "[*]" as the modified mark. Drops the trailing separator that
/// is left when a connection has no nickname.
inline QString asWindowTitle(std::string_view text)
{
    constexpr std::string_view nothing = " - ";
    if (text.ends_with(nothing))
        text.remove_suffix(nothing.size());
    return toQt(text).replace(QLatin1String("[*]"), QLatin1String("[*][*]"));
}
