// SPDX-License-Identifier: MIT
#pragma once

#include "desktop/StatusHost.h"

#include <QByteArray>
#include <QDBusArgument>
#include <QIcon>
#include <QImage>
#include <QList>
#include <QString>
#include <QStringList>

/// A picture as the StatusNotifierItem protocol carries it: ARGB32, not premultiplied, big-endian: (iiay).
struct StatusPixmap {
    int width = 0;
    int height = 0;
    QByteArray pixels;
};

QDBusArgument& operator<<(QDBusArgument& argument, StatusPixmap const& pixmap);
QDBusArgument const& operator>>(QDBusArgument const& argument, StatusPixmap& pixmap);

Q_DECLARE_METATYPE(StatusPixmap)

/// What of a title fits into a square: a figure over its unit, a wrapped text, or the last sign of a text that is
/// cut short.
QStringList statusIconLines(QString const& title);

/// The title in a square of this many pixels, light on a dark plate so that it reads on any panel.
QImage drawStatusIcon(QString const& title, int size);
/// The title on one line of this height.
QImage drawWideStatusIcon(QString const& title, int height);

/// The pictures of a title that a host of this look is given, in a panel's usual sizes and twice those; none for a host
/// that shows it as text.
QList<StatusPixmap> statusPixmaps(QString const& title, StatusLook look);
/// The same for the toolkit's own tray icon.
QIcon statusIcon(QString const& title);
