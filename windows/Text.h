// SPDX-License-Identifier: MIT
#pragma once

#include "platform/Color.h"

#include <QColor>
#include <QString>

#include <string_view>

// The one place where the core's texts and colours become Qt's.

inline QString toQt(std::string_view text)
{
    return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
}

inline QColor toQt(platform::Color color) { return { color.red, color.green, color.blue }; }

/// A text for a button or a menu line, where Qt would take "&" for the mark of a shortcut, and a tab for the beginning
/// of its name.
inline QString asLabel(QString text)
{
    return text.replace(QLatin1Char('&'), QLatin1String("&&")).replace(QLatin1Char('\t'), QLatin1Char(' '));
}
inline QString asLabel(std::string_view text) { return asLabel(toQt(text)); }

/// A pattern's text, with this in its place for one.
inline QString filledIn(QString pattern, QString const& text) { return pattern.replace(QLatin1String("%@"), text); }

/// A text that has no blanks to break it at, in lines that fit on a screen.
inline QString inLines(QString text)
{
    constexpr qsizetype lineLength = 64;
    for (qsizetype end = lineLength; end < text.size(); end += lineLength + 1)
        text.insert(end, QLatin1Char('\n'));
    return text;
}

/// A text for a window's title, where Qt would take "[*]" for the mark of a change. What the title says of a connection
/// without a nickname is left out.
inline QString asWindowTitle(std::string_view text)
{
    constexpr std::string_view nothing = " - ";
    if (text.ends_with(nothing))
        text.remove_suffix(nothing.size());
    return toQt(text).replace(QLatin1String("[*]"), QLatin1String("[*][*]"));
}
