// SPDX-License-Identifier: MIT
#pragma once

#include "draw/StatusPixmap.h"

#include <QImage>
#include <QList>
#include <QString>

#include <vector>

/// The title in a square of this many pixels, light on a dark plate so that it reads on any panel.
QImage drawStatusIcon(QString const& title, int size);

/// The pictures of a title that a host of this look is given, in a panel's usual sizes and twice those; none for a host
/// that shows it as text.
QList<QImage> statusImages(QString const& title, StatusLook look);
/// The same as the panel reads them.
std::vector<StatusPixmap> statusPixmaps(QString const& title, StatusLook look);
